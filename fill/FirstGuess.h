#pragma once

/// Settings that follow from an area and its surroundings without a trial.

#include <vector>

#include "fill/Choice.h"
#include "quality/TextureScale.h"

namespace Tesseret::Fill {

/// What is cut off softly and how far the matte has to grow for it, for an area this thick. A matte
/// as tight as the thing would leave a rim of it: the cut lets in the source up to three times
/// edgeBlend and three pixels inside.
struct Edge {
    double pathWidth, edgeBlend, grow;
};
Edge edgeFor(double thickness);

/// Edges for areas with something near by that must not be cut, the tightest first. On smooth
/// ground a hard edge would show.
std::vector<Edge> tighterEdges(const Edge& edge, const Quality::TextureScale& texture);

/// A choice without a place: samples, overlap and blending for this ground.
Choice firstGuess(const Edge& edge, const Quality::TextureScale& texture);

/// The blocks to try, from the scale of the texture, the likeliest first. `side` is the area's
/// longer one.
std::vector<int> blockSizes(const Quality::TextureScale& texture, int side);

/// The same choice with another block, whose overlap and blend keep their shares. The plug-in's
/// smallest block is 30 pixels.
Choice withBlock(const Choice& choice, int blockSize);

}  // namespace Tesseret::Fill
