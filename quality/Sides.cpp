#include "quality/Sides.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Tesseret::Quality {
namespace {

/// Cells whose middles are this near to the line may show both grounds; pixels. The known ones tell
/// what the grounds look like, so they have to be further away.
constexpr double kNear = 0.75 * kCell, kKnownNear = kCell;
/// So much less unlike the other side has to be, as a share of squared tones.
constexpr double kClearly = 0.5;

}  // namespace

Sides::Sides(const TwoGrounds& line, const RimLook& around) : line_(line)
{
    for (const PlacedLook& cell : around.cells()) {
        const double height = line_.height(cell.x, cell.y);
        if (std::abs(height) < kKnownNear) continue;
        looks_[height > 0 ? 1 : 0].push_back(cell.look);
    }
}

double Sides::mistakenShare(const Region& region) const
{
    if (looks_[0].empty() || looks_[1].empty()) return 0;
    const OfxRectI& window = region.window;
    int mistaken = 0, all = 0;
    for (int y = window.y1; y + kCell <= window.y2; y += kCell / 2) {
        for (int x = window.x1; x + kCell <= window.x2; x += kCell / 2) {
            const int column = x - window.x1, row = y - window.y1;
            const int changed = region.changed.sum(column, row, column + kCell, row + kCell);
            if (4 * changed < 3 * kCell * kCell) continue;
            const double height =
                line_.height(region.x + x + kCell / 2.0, region.y + y + kCell / 2.0);
            if (std::abs(height) < kNear) continue;
            const CellLook look = cellLook(*region.pixels, x, y);
            const int own = height > 0 ? 1 : 0;
            const bool isMistaken =
                unlikenessTo(1 - own, look) < kClearly * unlikenessTo(own, look);
            mistaken += isMistaken ? 1 : 0;
            ++all;
        }
    }
    return all > 0 ? double(mistaken) / all : 0;
}

double Sides::unlikenessTo(int side, const CellLook& look) const
{
    float least = std::numeric_limits<float>::max();
    for (const CellLook& other : looks_[std::size_t(side)]) {
        least = std::min(least, unlikeness(look, other));
    }
    return double(least);
}

}  // namespace Tesseret::Quality
