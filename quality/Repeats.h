#pragma once

/// Landmarks that a fill shows more than once.

#include "quality/Activity.h"
#include "quality/Region.h"
#include "quality/UsualDifference.h"

namespace Tesseret::Quality {

/// How striking the cells of a picture are: 0 for a cell like most near the area, 1 and more for
/// one that stands out.
class Landmarks {
public:
    Landmarks() = default;
    /// `near`: what is compared with, in pixels; lost cells of it (0 in `levels`) are left out.
    Landmarks(const Activity& activity, const std::vector<std::uint8_t>& levels, int width,
              OfxRectI near);

    double at(int column, int row) const;

private:
    int columns_ = 0;
    std::vector<float> striking_;
};

/// The share of the region that shows pixels of the picture once more, each weighted by how
/// striking it is. Known pixels within `near` count as shown already.
double repeatedShare(const RegionMatches& matches, const UsualDifference& usual,
                     const Landmarks& landmarks, const Activity& activity, OfxRectI near);

}  // namespace Tesseret::Quality
