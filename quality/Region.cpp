#include "quality/Region.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "quality/KnownPixels.h"

namespace Tesseret::Quality {
namespace {

constexpr std::array<int, kLevels> kSteps = {4, 4, 8, 16};
/// The share of changed pixels from which on a patch is inside.
constexpr std::array<double, kLevels> kInside = {0.9, 0.9, 0.6, 0.5};
constexpr int kRounds = 2;

/// Of the patch at (x, y) of the window.
Part partOf(const Region& region, int x, int y, int level)
{
    const int side = patchSide(level);
    const OfxRectI near = {std::max(x - kDoubtful, 0), std::max(y - kDoubtful, 0),
                           std::min(x + side + kDoubtful, region.changed.width()),
                           std::min(y + side + kDoubtful, region.changed.height())};
    if (region.changed.sum(near) == 0) return Part::Outside;
    if (region.ignored && region.ignored->sum(near) != 0) return Part::Outside;
    const int inside = region.changed.sum(x, y, x + side, y + side);
    return inside >= kInside[std::size_t(level)] * side * side ? Part::Inside : Part::Rim;
}

LevelMatches gridOf(const Region& region, int level)
{
    LevelMatches result;
    const int side = patchSide(level), step = kSteps[std::size_t(level)];
    const OfxRectI& window = region.window;
    QueryGrid& grid = result.grid;
    grid.pixels = region.pixels;
    grid.x = window.x1;
    grid.y = window.y1;
    grid.step = step;
    grid.columns = std::max((window.x2 - window.x1 - side) / step + 1, 0);
    grid.rows = std::max((window.y2 - window.y1 - side) / step + 1, 0);
    // Large patches on the rim are half known: they say little about the fill.
    const Part least = level < 2 ? Part::Rim : Part::Inside;
    for (int row = 0; row < grid.rows; ++row) {
        for (int column = 0; column < grid.columns; ++column) {
            const Part part = partOf(region, column * step, row * step, level);
            result.parts.push_back(part);
            grid.wanted.push_back(part >= least ? 1 : 0);
        }
    }
    return result;
}

/// The matches of a grid, for another that may be coarser.
std::vector<Match> thinned(const LevelMatches& from, const QueryGrid& to)
{
    std::vector<Match> matches(to.size());
    const int ratio = to.step / from.grid.step;
    for (int row = 0; row < to.rows; ++row) {
        for (int column = 0; column < to.columns; ++column) {
            const std::size_t at = std::size_t(row * ratio) * std::size_t(from.grid.columns) +
                                   std::size_t(column * ratio);
            matches[std::size_t(row) * std::size_t(to.columns) + std::size_t(column)] =
                from.matches[at];
        }
    }
    return matches;
}

}  // namespace

RegionMatches matchRegion(const Region& region, const Reference& reference)
{
    RegionMatches result;
    for (int level = 0; level < kLevels; ++level) {
        LevelMatches& matches = result[std::size_t(level)];
        matches = gridOf(region, level);
        std::vector<Match> start;
        if (level > 0) start = thinned(result[std::size_t(level - 1)], matches.grid);
        matches.matches = searchPatches(matches.grid, reference, level, start, kRounds);
    }
    return result;
}

double difference(const Match& match)
{
    return std::sqrt(double(match.difference) / kPatchValues);
}

}  // namespace Tesseret::Quality
