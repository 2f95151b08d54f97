#pragma once

#include <limits>
#include <optional>

#include "engine/filter/LuminanceSpread.h"
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
/// pixel in half blurs. `LuminanceSpread` does the later ones.
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
    /// The part of the region whose gain will be used; all of it by default. Other gains keep their
    /// values.
    void setNeeded(const Region& part) { needed_ = part; }
    /// Holds every pixel of the band that is not 0; the region by default.
    void setBandBounds(const Region& bounds) { bandBounds_ = bounds; }

    /// Matches over the node's region of an image that holds the texture. It is only read.
    void process(const Map<Pixel>& destination);

    void runPasses() override;

private:
    class Planes;

    void limitReach();
    bool findBand(SharedWork& work);
    void findBandRow(int y, Region& found);
    bool measure(TileBlur& blur);
    void reportNoMemory() const;

    const Map<Pixel32f>* band_;
    const Map<Pixel>* source_;
    Map<Pixel32f>* luminanceGain_;
    float luminanceBlur_ = 2.0f;
    int maxPasses_ = std::numeric_limits<int>::max();
    std::optional<Region> needed_, bandBounds_;
    int reach_ = 0, halfReach_ = 0;  ///< blur radii, pixels

    // Of the current call.
    LuminanceSpread* spread_ = nullptr;
    Region inBand_;    ///< holds the pixels of the band
    Region measured_;  ///< holds those with a ratio
};

}  // namespace Orvane::Engine
