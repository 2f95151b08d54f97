#pragma once

/// How well patches of a ground usually match others of the same picture.

#include <array>
#include <vector>

#include "quality/Activity.h"
#include "quality/Region.h"

namespace Tesseret::Quality {

/// Learns from the matches of known regions. A place is expected to match as well as the known
/// cells that look like it: sand matches less well than the sky, wherever it lies.
class UsualDifference {
public:
    UsualDifference() = default;
    /// `known` are matches of known regions of the picture itself.
    UsualDifference(const Activity& activity, const std::vector<RegionMatches>& known);

    /// In tones, for a patch at (x, y) of the picture.
    double at(int x, int y, int level) const;

private:
    struct Sample {
        CellLook look;
        std::array<float, kLevels> difference{};
        std::array<int, kLevels> count{};
    };

    std::array<float, kLevels> expected(const CellLook& look,
                                        const std::vector<Sample>& samples) const;

    int columns_ = 0, rows_ = 0;
    std::vector<std::array<float, kLevels>> cells_;
};

}  // namespace Tesseret::Quality
