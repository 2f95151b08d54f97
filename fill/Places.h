#pragma once

/// Where the texture of a fill may come from.

#include <vector>

#include "fill/Choice.h"
#include "fill/FirstGuess.h"
#include "quality/TextureScale.h"

namespace Tesseret::Fill {

/// An area and what surrounds it, in pixels of the source.
struct Surroundings {
    OfxRectI matte;               ///< round the area in the matte
    OfxRectI box;                 ///< the same as it is filled, growth included
    OfxRectI source;              ///< all pixels there are
    OfxRectI window;              ///< the part looked at
    std::vector<OfxRectI> taboo;  ///< boxes of other areas, whose pixels are to be lost
};

/// The surroundings without the area, and boxes beside it and elsewhere that look like its rim;
/// the more alike the earlier, but the surroundings first.
std::vector<Place> placesFor(const Surroundings& area, const Quality::TextureScale& texture);

/// Boxes beside the area in the rows that its fill takes with such an edge, where there is room:
/// sky, water and fields change with height, and horizons go on. The more alike to the rim the
/// earlier.
std::vector<Place> levelPlaces(const Surroundings& area, const Edge& edge,
                               const Quality::TextureScale& texture);

/// Places of one of the two grounds that meet at the area, at most `count`.
std::vector<Place> placesOnGround(const Surroundings& area, const Quality::TextureScale& texture,
                                  int ground, std::size_t count);

/// The largest part of a box that overlaps no taboo, found by cutting off sides; may be empty.
OfxRectI clearPart(OfxRectI box, const std::vector<OfxRectI>& taboo);

int widthOf(const OfxRectI& box);
int heightOf(const OfxRectI& box);
OfxRectI grownBox(const OfxRectI& box, int by);

}  // namespace Tesseret::Fill
