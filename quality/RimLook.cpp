#include "quality/RimLook.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Tesseret::Quality {
namespace {

/// As many tones apart as pixels further away.
constexpr double kTonesPerPixel = 0.15;
/// A cell of another colour tells as little of what to expect as one that is so much further away.
constexpr double kPixelsPerTone = 2.0;

double colourDifference(const CellLook& a, const CellLook& b)
{
    double squares = 0;
    for (std::size_t c = 0; c < 3; ++c) {
        const double apart = double(a.colour[c] - b.colour[c]);
        squares += apart * apart;
    }
    return std::sqrt(squares);
}

double squaredDistance(const PlacedLook& cell, double x, double y)
{
    return (cell.x - x) * (cell.x - x) + (cell.y - y) * (cell.y - y);
}

}  // namespace

RimLook::RimLook(const Activity& activity, const std::vector<std::uint8_t>& levels, int width,
                 const OfxRectI& near, const OfxRectI& except)
{
    for (int row = std::max(near.y1, 0) / kCell;
         row < std::min((near.y2 + kCell - 1) / kCell, activity.rows()); ++row) {
        for (int column = std::max(near.x1, 0) / kCell;
             column < std::min((near.x2 + kCell - 1) / kCell, activity.columns()); ++column) {
            const int x = column * kCell, y = row * kCell;
            if (levels[std::size_t(y) * std::size_t(width) + std::size_t(x)] < 2) continue;
            if (x < except.x2 && x + kCell > except.x1 && y < except.y2 && y + kCell > except.y1) {
                continue;
            }
            cells_.push_back({activity.cell(column, row), x + kCell / 2.0, y + kCell / 2.0});
        }
    }
    for (std::size_t s = 0; s < kScales && !cells_.empty(); ++s) {
        std::vector<float> changes;
        for (const PlacedLook& cell : cells_) changes.push_back(cell.look.change[s]);
        const auto tenth = changes.begin() + std::ptrdiff_t(changes.size() / 10);
        std::nth_element(changes.begin(), tenth, changes.end());
        calmest_[s] = *tenth;
    }
}

std::array<float, kScales> RimLook::expectedChange(const PlacedLook& at) const
{
    std::array<float, kScales> sum{};
    float weights = 0;
    for (const PlacedLook& cell : cells_) {
        const double apart = kPixelsPerTone * colourDifference(cell.look, at.look);
        const double squares = squaredDistance(cell, at.x, at.y) + apart * apart + kCell * kCell;
        const auto weight = float(1e6 / (squares * squares));
        for (std::size_t s = 0; s < kScales; ++s) sum[s] += weight * cell.look.change[s];
        weights += weight;
    }
    for (float& value : sum) value = weights > 0 ? value / weights : 0;
    return sum;
}

double RimLook::strangeness(const PlacedLook& cell) const
{
    double nearest = std::numeric_limits<double>::max();
    for (const PlacedLook& other : cells_) {
        nearest = std::min(nearest, squaredDistance(other, cell.x, cell.y));
    }
    nearest = std::sqrt(nearest);
    double least = std::numeric_limits<double>::max();
    for (const PlacedLook& other : cells_) {
        const double further = std::sqrt(squaredDistance(other, cell.x, cell.y)) - nearest;
        const double tones = kTonesPerPixel * further;
        least = std::min(least, double(unlikeness(cell.look, other.look)) + tones * tones);
    }
    return std::sqrt(least);
}

}  // namespace Tesseret::Quality
