#include "quality/Repeats.h"

#include <algorithm>
#include <cmath>

#include "quality/Middle.h"

namespace Tesseret::Quality {
namespace {

constexpr int kLevel = 1;  ///< patches as large as cells

}  // namespace

Landmarks::Landmarks(const Activity& activity, const std::vector<std::uint8_t>& levels, int width,
                     OfxRectI near)
    : columns_(activity.columns()), striking_(activity.cells().size())
{
    // Each feature's median and median deviation near the area.
    constexpr std::size_t kFeatures = 3 + kScales;
    const auto feature = [](const CellLook& look, std::size_t i) {
        return i < 3 ? look.colour[i] : look.change[i - 3];
    };
    for (std::size_t i = 0; i < kFeatures; ++i) {
        std::vector<float> values;
        for (int row = near.y1 / kCell; row < std::min(near.y2 / kCell, activity.rows()); ++row) {
            for (int column = near.x1 / kCell; column < std::min(near.x2 / kCell, columns_);
                 ++column) {
                const auto pixel =
                    std::size_t(row * kCell) * std::size_t(width) + std::size_t(column * kCell);
                if (levels[pixel] > kLevel) {
                    values.push_back(feature(activity.cell(column, row), i));
                }
            }
        }
        const float usual = middle(values);
        for (float& value : values) value = std::abs(value - usual);
        const float deviation = 1.5f * middle(values) + 6.0f;
        for (std::size_t cell = 0; cell < striking_.size(); ++cell) {
            const float apart = std::abs(feature(activity.cells()[cell], i) - usual) / deviation;
            striking_[cell] += apart * apart / kFeatures;
        }
    }
    // About 1 on average; what is twice as far out stands out.
    for (float& striking : striking_) {
        striking = std::clamp((std::sqrt(striking) - 1.5f) / 1.5f, 0.0f, 2.0f);
    }
}

double Landmarks::at(int column, int row) const
{
    return striking_[std::size_t(row) * std::size_t(columns_) + std::size_t(column)];
}

double repeatedShare(const RegionMatches& matches, const UsualDifference& usual,
                     const Landmarks& landmarks, const Activity& activity, OfxRectI near)
{
    const LevelMatches& found = matches[kLevel];
    const int perCell = (kCell / found.grid.step) * (kCell / found.grid.step);
    std::vector<int> shown(activity.cells().size());
    int inside = 0;
    for (std::size_t i = 0; i < found.matches.size(); ++i) {
        const Match& match = found.matches[i];
        if (found.parts[i] != Part::Inside || match.difference == Match::kNone) continue;
        ++inside;
        // Only what is clearly a copy.
        if (difference(match) > 0.4 * usual.at(match.x, match.y, kLevel)) continue;
        const int column = std::min((match.x + kCell / 2) / kCell, activity.columns() - 1);
        const int row = std::min((match.y + kCell / 2) / kCell, activity.rows() - 1);
        ++shown[std::size_t(row) * std::size_t(activity.columns()) + std::size_t(column)];
    }
    if (inside == 0) return 0;
    double repeated = 0;
    for (int row = 0; row < activity.rows(); ++row) {
        for (int column = 0; column < activity.columns(); ++column) {
            const int count =
                shown[std::size_t(row) * std::size_t(activity.columns()) + std::size_t(column)];
            if (count == 0) continue;
            const bool visible = column * kCell >= near.x1 && column * kCell < near.x2 &&
                                 row * kCell >= near.y1 && row * kCell < near.y2;
            const double copies = double(count) / perCell + (visible ? 1 : 0);
            repeated += landmarks.at(column, row) * std::max(copies - 1.25, 0.0);
        }
    }
    return repeated * perCell / inside;
}

}  // namespace Tesseret::Quality
