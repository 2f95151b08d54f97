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

/// The settings of a synthesis. Maps are borrowed and may be null.
template <typename Pixel>
struct SynthesisSettings {
    std::array<Map<Pixel>*, 3> textures{};
    Map<Pixel32f>* fillMask = nullptr;  ///< prepared: M on the region to fill, 0 elsewhere
    Region sampleBox;                   ///< pixels
    bool fillAll = true;                ///< keep nothing of the source
    bool avoidFillRegion = false;       ///< take no texture from the fill region
    int seed = 0;
    BlockSettings blocks;
    bool useStoredBlocks = false;  ///< replay the blocks of the state
    bool keepsBlocks = true;       ///< later renders may replay this one's blocks
    // The rest is used only with a mask. Lengths are pixels.
    float pathWidth = 0.0f;       ///< reach of the band that the boundary may run in
    float edgeBlend = 0.0f;       ///< softening of the boundary
    bool luminanceMatch = false;  ///< match the brightness round the region
    float luminanceBlur = 0.0f;   ///< reach of one luminance pass
    int maxPasses = 0;            ///< of the luminance match
};

/// Turns one render's inputs into the output image: `process(source, output)` over the render
/// window. `begin` runs the stages in order on the render thread: it determines the fill rectangle,
/// then quilts it or replays the recorded blocks. With a mask it also prepares the band of known
/// pixels that guides the quilting, matches luminance, and fits the boundary path. The node's one
/// pass composites texture and source through the composite mask and the luminance gain.
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
    Region findFillRect();
    void replay();
    void compositeTextureOnly();
    bool mayLeaveOut(const Region& fillRect) const;
    bool texturesAreOpaque() const;
    void quilt(const Region& fillRect, const Region& wanted);
    void fillMasked(const Region& fillRect);
    void prepareBand(const Region& fillRect);
    void matchLuminance(const Region& fillRect);
    bool readsTargetInPlace() const;
    Map<Pixel> laidInTarget(const Region& part);
    void fitBoundary(const Region& fillRect, const Map<Pixel>& placed);
    Region placedRegion() const;
    void copyLaid(const Region& part);
    void copyLaidOutside();
    void keepLaid();
    Region coveredIn(int y) const;
    void compositeRow(int y);

    SynthesisSettings<Pixel> settings_;
    TemporalState* state_;
    RenderObserver* observer_;
    MapReports reports_;
    std::optional<ObservedStage> compositing_;
    std::vector<Map<Pixel>*> textures_;
    Map<Pixel> laid_;                   ///< texture for the composite; elsewhere, the target's
    Region laidPart_;                   ///< what it stores; the rest is opaque and does not show
    std::vector<Pixel> opaque_;         ///< a row of it, as wide as the window
    Region shown_;                      ///< where texture can show; all masks are 0 beyond it
    Map<Pixel32f> pathBand_;            ///< positive on known pixels round the fill region
    Map<PixelVec2f> bandGradient_;      ///< of the blurred mask; points into the fill region
    std::vector<PixelPoint> boundary_;  ///< the closed path, if the observer wants maps
};

}  // namespace Orvane::Engine
