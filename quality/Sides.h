#pragma once

/// Whether a fill keeps two grounds on their sides of the line between them.

#include <array>
#include <vector>

#include "quality/Region.h"
#include "quality/RimLook.h"
#include "quality/TwoGrounds.h"

namespace Tesseret::Quality {

/// The known cells round an area on each side of a line.
class Sides {
public:
    /// The line in pixels from the source's first.
    Sides(const TwoGrounds& line, const RimLook& around);

    /// The share of a region's cells that look more like the other side than like their own, 0 to
    /// 1. Cells close to the line do not count.
    double mistakenShare(const Region& region) const;

private:
    double unlikenessTo(int side, const CellLook& look) const;

    TwoGrounds line_;
    std::array<std::vector<CellLook>, 2> looks_;
};

}  // namespace Tesseret::Quality
