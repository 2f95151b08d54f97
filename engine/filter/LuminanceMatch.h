#pragma once

#include <limits>
#include <optional>
#include <vector>

#include "engine/filter/BoxBlur.h"
#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// Computes the gain that matches synthesised texture to the brightness of the image around it. The
/// first pass measures the ratio of source luminance to destination luminance in the band; each
/// later pass spreads it to the pixels that have enough known ones around them, as their mean. The
/// gain of a pixel is its ratio in the pass that makes it known.
///
/// The node ends when every pixel that needs a gain is known, at the pass limit, after an abort,
/// and as soon as no later pass can finish: an empty band leaves the gain unchanged. A ratio that
/// is not finite counts as not measured. The number of passes is about the distance of the farthest
/// pixel in half blurs; all passes cost the same.
///
/// Without memory the render status says aborted, error code 1000, and the gain is unchanged or
/// incomplete.
template <typename Pixel>
class LuminanceMatch final : public MapNode<const Map<Pixel>> {
public:
    /// `band` holds 0 to M and is positive where the ratio is measured; `source` is the original
    /// image. `luminanceGain` gets the factors and keeps its values where there is none. All must
    /// outlive the node.
    LuminanceMatch(const Map<Pixel32f>& band, const Map<Pixel>& source,
                   Map<Pixel32f>& luminanceGain)
        : band_(&band), source_(&source), luminanceGain_(&luminanceGain)
    {}

    /// The reach of one pass, in pixels; negative values and NaN count as 0.
    void setLuminanceBlur(float pixels) { luminanceBlur_ = pixels; }
    void setMaxPasses(int count) { maxPasses_ = count; }
    /// The part of the region whose gain will be used; all of it by default. A gain never changes
    /// once it is known, so gains do not depend on this.
    void setNeeded(const Region& part) { needed_ = part; }

    /// Matches over the node's region of an image that holds the texture. It is only read.
    void process(const Map<Pixel>& destination);

    void runPasses() override;
    void processPass() override;

private:
    /// The outcome of a pass: over the rows of one worker, or over all.
    struct Outcome {
        bool allKnown = true;      ///< every pixel that needs a gain is known
        bool becameKnown = false;  ///< some pixel is known that was not one pass ago
        bool leftEarlier = false;  ///< some pixel differs from two passes ago
        Region knownBounds;        ///< holds every known pixel

        void add(const Outcome& other);
    };
    using RowWork = void (LuminanceMatch::*)(int y, Outcome& outcome);

    bool prepare();
    bool makeMaps();
    void limitReach();
    void takeLuma(const Map<Pixel>& image, Map<Pixel32f>& luma);
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
    RowWork rowWork_ = nullptr;      ///< of the current pass
    std::vector<Outcome> outcomes_;  ///< one for each worker thread
    Region active_;  ///< the part that a pass processes; nothing is known outside it

    // Work maps, of the size of the region.
    Map<Pixel32f> ratio_;                  ///< where known, else 0
    Map<Pixel32f> known_;                  ///< 1 or 0; the blurred weight while a pass runs
    Map<Pixel32f> knownBefore_;            ///< one pass ago
    Map<Pixel32f> knownEarlier_;           ///< two passes ago
    Map<Pixel32f> support_;                ///< the density of known pixels
    Map<Pixel32f> sourceLuma_, destLuma_;  ///< softened luminance; pass 0 only
};

}  // namespace Orvane::Engine
