#pragma once

#include <array>
#include <optional>
#include <vector>

#include "engine/MapReports.h"
#include "engine/RenderObserver.h"
#include "engine/TemporalState.h"
#include "engine/map/MapRow.h"
#include "engine/map/PixelTraits.h"
#include "engine/pass/MapProcessor.h"
#include "engine/quilt/Quilt.h"

namespace Orvane::Engine {

/// What the driver sets before it runs the node. Maps are borrowed; null stands for none.
template <typename Pixel>
struct SynthesisSettings {
    std::array<Map<Pixel>*, 3> textures{};
    Map<Pixel32f>* fillMask = nullptr;  ///< prepared: M on the region to fill, 0 elsewhere
    Region sampleBox;                   ///< pixels
    bool fillAll = true;                ///< nothing of the source is kept
    bool avoidFillRegion = false;       ///< no texture is taken from what is to be filled
    int seed = 0;
    BlockSettings blocks;
    bool useStoredBlocks = false;  ///< lay the blocks of the state again instead of new ones
    // The rest counts only with a mask. Lengths are pixels.
    float pathWidth = 0.0f;       ///< reach of the band that the boundary may run in
    float edgeBlend = 0.0f;       ///< softening of the boundary
    bool luminanceMatch = false;  ///< bring the texture to the brightness round the region
    float luminanceBlur = 0.0f;   ///< how far one step of that reaches
    int maxPasses = 0;            ///< limit of such steps
};

/// Turns one render's inputs into the output image: `process(source, output)` over the render
/// window. The synthesis happens in `begin`, stage by stage on the render thread: it decides the
/// fill rectangle, then quilts it anew or lays the recorded blocks again. With a mask it also
/// prepares the band of known pixels that guides the quilting, matches luminance, and fits the
/// boundary path. The node's one pass composites texture and source through the composite mask and
/// the luminance gain.
///
/// After an abort the output keeps what was written so far: nothing, unless quilting had finished.
template <typename Pixel>
class SynthesisNode final : public Sampler<Map<Pixel>, Map<Pixel>> {
    static constexpr float kMax = PixelTraits<Pixel>::kMax;

public:
    SynthesisNode(const SynthesisSettings<Pixel>& settings, TemporalState& state,
                  RenderObserver* observer);

    void begin() override;
    void processPass() override;
    void end() override;
    void beginPass() override;
    void endPass() override;

private:
    void collectTextures();
    Region decideFillRect();
    void replay();
    void takeTextureEverywhere();
    void quilt(const Region& fillRect);
    void fillMasked(const Region& fillRect);
    void prepareBand(const Region& fillRect);
    void matchLuminance(const Region& fillRect);
    void fitBoundary(const Region& fillRect);
    Region placedRegion() const;
    void compositeRow(int y);
    void compositeOutside(const RowReader<Pixel>& source, RowWriter<Pixel>& out, int begin,
                          int end) const;

    SynthesisSettings<Pixel> settings_;
    TemporalState* state_;
    RenderObserver* observer_;
    MapReports reports_;
    std::optional<ObservedStage> compositing_;
    std::vector<Map<Pixel>*> textures_;
    Map<Pixel32f> pathBand_;            ///< positive on known pixels round the fill region
    Map<PixelVec2f> bandGradient_;      ///< of the blurred mask; points towards the fill region
    std::vector<PixelPoint> boundary_;  ///< the closed path; only for an observer that wants it
};

}  // namespace Orvane::Engine
