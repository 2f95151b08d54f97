#pragma once

/// What the surroundings of an area tell about settings for its fill.

#include <array>
#include <memory>
#include <optional>

#include "picture/Picture.h"
#include "quality/TwoGrounds.h"

namespace Tesseret::Quality {

/// Describes the known pixels round an area. Costs about as much as a FillScorer's construction.
class TextureScale {
public:
    /// The arguments of FillScorer; throws the same.
    TextureScale(const Picture& source, const Picture& lost, OfxRectI area);
    ~TextureScale();
    TextureScale(TextureScale&&) noexcept;
    TextureScale& operator=(TextureScale&&) noexcept;

    /// Distance after which the texture repeats, in pixels, up to 192: the rows of a pavement. 0
    /// when it does not.
    double period() const;
    /// Size of what the texture is made of, in pixels: a stone, a tuft. Where the surroundings are
    /// no texture, such as a sky, the size of their shades; at most 192.
    double elementSize() const;
    /// Median absolute difference from the mean of 8 x 8 pixels, in shares of white: below about
    /// 0.008 for sky and calm water, 0.02 and more for gravel or grass.
    double roughness() const;

    /// The dividing line, when the surroundings fall into two grounds.
    const std::optional<TwoGrounds>& grounds() const;

    /// How alike the surroundings and the known pixels of a box (in the source's coordinates) are
    /// in colour and structure: about 1 for a box that shows just these grounds, towards 0 for
    /// others. 0 for a box without known pixels or smaller than 16 pixels.
    double likeness(const OfxRectI& box) const;
    /// The same with one of the two grounds, 0 or 1; without two, with all.
    double likeness(const OfxRectI& box, int ground) const;

private:
    class Surroundings;
    std::unique_ptr<const Surroundings> surroundings_;
};

}  // namespace Tesseret::Quality
