#include "quality/UsualDifference.h"

#include <algorithm>

namespace Tesseret::Quality {
namespace {

/// Cells that differ by less than this many tones look the same.
constexpr float kSame = 12.0f;
/// Without any known match.
constexpr float kUnknown = 20.0f;

}  // namespace

UsualDifference::UsualDifference(const Activity& activity, const std::vector<RegionMatches>& known)
    : columns_(activity.columns()), rows_(activity.rows())
{
    std::vector<Sample> byCell(activity.cells().size());
    for (const RegionMatches& matches : known) {
        for (int level = 0; level < kLevels; ++level) {
            const LevelMatches& found = matches[std::size_t(level)];
            for (std::size_t i = 0; i < found.matches.size(); ++i) {
                if (found.matches[i].difference == Match::kNone) continue;
                const int half = patchSide(level) / 2;
                const int x = found.grid.x + int(i) % found.grid.columns * found.grid.step + half;
                const int y = found.grid.y + int(i) / found.grid.columns * found.grid.step + half;
                if (x / kCell >= columns_ || y / kCell >= rows_) continue;
                Sample& sample =
                    byCell[std::size_t(y / kCell) * std::size_t(columns_) + std::size_t(x / kCell)];
                sample.difference[std::size_t(level)] += float(difference(found.matches[i]));
                ++sample.count[std::size_t(level)];
            }
        }
    }
    std::vector<Sample> samples;
    for (std::size_t i = 0; i < byCell.size(); ++i) {
        if (byCell[i].count[0] == 0) continue;
        samples.push_back(byCell[i]);
        samples.back().look = activity.cells()[i];
    }
    cells_.reserve(activity.cells().size());
    for (const CellLook& look : activity.cells()) cells_.push_back(expected(look, samples));
}

std::array<float, kLevels> UsualDifference::expected(const CellLook& look,
                                                     const std::vector<Sample>& samples) const
{
    std::array<float, kLevels> sums{}, weights{};
    for (const Sample& sample : samples) {
        const float apart = unlikeness(look, sample.look) + kSame * kSame;
        const float weight = 1e4f / (apart * apart);
        for (std::size_t l = 0; l < kLevels; ++l) {
            sums[l] += weight * sample.difference[l];
            weights[l] += weight * float(sample.count[l]);
        }
    }
    std::array<float, kLevels> result{};
    for (std::size_t l = 0; l < kLevels; ++l) {
        result[l] = weights[l] > 0 ? sums[l] / weights[l] : kUnknown;
    }
    return result;
}

double UsualDifference::at(int x, int y, int level) const
{
    if (cells_.empty()) return kUnknown;
    const int half = patchSide(level) / 2;
    const int column = std::min((x + half) / kCell, columns_ - 1);
    const int row = std::min((y + half) / kCell, rows_ - 1);
    return cells_[std::size_t(row) * std::size_t(columns_) + std::size_t(column)]
                 [std::size_t(level)];
}

}  // namespace Tesseret::Quality
