#include "fill/FirstGuess.h"

#include <algorithm>
#include <cmath>

namespace Tesseret::Fill {

namespace {

constexpr int kLeastBlock = 30;
constexpr int kMostBlock = 240;
constexpr int kFirstBlock = 60;

/// Below this the ground is smooth, like sky or water: there blending hides the joins, which would
/// smear gravel.
constexpr double kSmooth = 0.016;

Edge edgeOf(double edgeBlend)
{
    return {std::max(1.0, 2.0 * edgeBlend), edgeBlend, std::ceil(3.0 * edgeBlend + 3.0)};
}

}  // namespace

Edge edgeFor(double thickness)
{
    constexpr double kShare = 0.04;
    return edgeOf(std::clamp(std::round(kShare * thickness * 2.0) / 2.0, 0.5, 5.0));
}

std::vector<Edge> tighterEdges(const Edge& edge, const Quality::TextureScale& texture)
{
    const double least = texture.roughness() < kSmooth ? 2.0 : 0.5;
    std::vector<Edge> edges;
    for (const double edgeBlend : {0.5, 2.0}) {
        if (edgeBlend >= least && edgeBlend < edge.edgeBlend) edges.push_back(edgeOf(edgeBlend));
    }
    return edges;
}

Choice firstGuess(const Edge& edge, const Quality::TextureScale& texture)
{
    Choice choice;
    choice.pathWidth = edge.pathWidth;
    choice.edgeBlend = edge.edgeBlend;
    choice.grow = edge.grow;
    choice.blockSize = kFirstBlock;
    choice.overlap = kFirstBlock / 2;
    choice.blendSize = texture.roughness() < kSmooth ? kFirstBlock / 4 : 0;
    choice.numSamples = 60;
    return choice;
}

std::vector<int> blockSizes(const Quality::TextureScale& texture, int side)
{
    const double period = texture.period();
    const double element = texture.elementSize();
    // Blocks have to hold what the texture is made of, else it turns to mush.
    const double least = std::max(double(kLeastBlock), period > 0.0 ? 1.2 * period : 1.5 * element);
    const double middle = std::max({least, 0.35 * side, double(kFirstBlock)});
    std::vector<int> sizes;
    for (const double size :
         {middle, 0.65 * middle, 1.5 * middle, 2.2 * middle, 0.45 * middle, 1.2 * middle}) {
        const int block = static_cast<int>(std::lround(
            std::clamp(std::max(size, least), double(kLeastBlock), double(kMostBlock))));
        if (std::ranges::find(sizes, block) == sizes.end()) sizes.push_back(block);
    }
    return sizes;
}

Choice withBlock(const Choice& choice, int blockSize)
{
    Choice other = choice;
    const double factor = double(blockSize) / choice.blockSize;
    other.blockSize = blockSize;
    other.overlap = std::max(1, static_cast<int>(std::lround(choice.overlap * factor)));
    other.blendSize = static_cast<int>(std::lround(choice.blendSize * factor));
    return other;
}

}  // namespace Tesseret::Fill
