#pragma once

#include <limits>
#include <optional>
#include <vector>

#include "engine/filter/BoxBlur.h"
#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// Finds the gain that gives synthesised texture the brightness of the picture around it. In the
/// band, the ratio of source luminance to destination luminance is measured; pass by pass it then
/// spreads over the region, each time to the pixels that have enough known ones around them, as
/// their mean. The gain of a pixel is the ratio in the pass that makes it known.
///
/// The node ends when every pixel that needs a gain is known, at the pass limit, after an abort,
/// and as soon as no later pass can finish: an empty band leaves the gain as it was. A ratio that
/// is not a finite number counts as not measured. Passes are about as many as the farthest pixel is
/// half-blurs away, and cost the same each.
///
/// Without memory the render status says aborted, error code 1000, and the gain stays as it was or
/// is incomplete.
template <typename Pixel>
class LuminanceMatch final : public MapNode<const Map<Pixel>> {
public:
    /// `band` holds 0 to M and is positive where the ratio is measured; `source` is the untouched
    /// picture. `luminanceGain` gets the factors and keeps its values where none is found. All are
    /// borrowed for as long as the node lives.
    LuminanceMatch(const Map<Pixel32f>& band, const Map<Pixel>& source,
                   Map<Pixel32f>& luminanceGain)
        : band_(&band), source_(&source), luminanceGain_(&luminanceGain)
    {}

    /// How far one pass spreads, in pixels; a negative number and NaN count as 0.
    void setLuminanceBlur(float pixels) { luminanceBlur_ = pixels; }
    void setMaxPasses(int count) { maxPasses_ = count; }
    /// The part of the region whose gain will be used; all of it unless set. The gain of a pixel
    /// never changes once it is known, so it does not depend on this.
    void setNeeded(const Region& part) { needed_ = part; }

    /// Matches over the node's region of a picture that holds the texture. It is only read.
    void process(const Map<Pixel>& destination);

    void runPasses() override;
    void processPass() override;

private:
    /// What a pass came to: over the rows of one worker, or over all.
    struct Outcome {
        bool allKnown = true;      ///< every pixel that needs a gain is known
        bool becameKnown = false;  ///< a pixel is known that was not one pass ago
        bool leftEarlier = false;  ///< a pixel is not as it was two passes ago
        Region knownBounds;        ///< holds every known pixel

        void add(const Outcome& other);
    };
    using RowWork = void (LuminanceMatch::*)(int y, Outcome& outcome);

    bool prepare();
    bool makeMaps();
    void limitReach();
    void takeLuma(const Map<Pixel>& picture, Map<Pixel32f>& luma);
    void clear(Map<Pixel32f>& map);
    void blur(const Map<Pixel32f>& from, Map<Pixel32f>& to, int radius);
    Outcome measure();
    Outcome spread(const Region& known);
    Outcome runRows(RowWork work);
    Region neededPart() const;
    void widenActive(const Region& known);
    void measureRow(int y, Outcome& outcome);
    void spreadRow(int y, Outcome& outcome);
    bool isAborted() const;

    const Map<Pixel32f>* band_;
    const Map<Pixel>* source_;
    Map<Pixel32f>* luminanceGain_;
    float luminanceBlur_ = 2.0f;
    int maxPasses_ = std::numeric_limits<int>::max();
    std::optional<Region> needed_;
    int reach_ = 0, halfReach_ = 0;  ///< blur radii, pixels
    BoxBlur blur_{BoxBlur::OneApplication};
    RowWork rowWork_ = nullptr;      ///< of the pass that runs
    std::vector<Outcome> outcomes_;  ///< one for each worker thread
    Region active_;                  ///< what a pass works on; nothing is known outside of it

    // Work maps, as large as the region.
    Map<Pixel32f> ratio_;                  ///< where known, else 0
    Map<Pixel32f> known_;                  ///< 1 or 0; the blurred weight while a pass runs
    Map<Pixel32f> knownBefore_;            ///< one pass ago
    Map<Pixel32f> knownEarlier_;           ///< two passes ago
    Map<Pixel32f> support_;                ///< how many known pixels are near
    Map<Pixel32f> sourceLuma_, destLuma_;  ///< softened luminance; pass 0 only
};

}  // namespace Orvane::Engine
