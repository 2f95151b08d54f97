#pragma once

/// What the known pixels round a region lead to expect within.

#include <array>
#include <cstdint>
#include <vector>

#include "quality/Activity.h"

namespace Tesseret::Quality {

struct PlacedLook {
    CellLook look;
    double x, y;  ///< middle of the cell in pixels
};

/// The known cells round a region.
class RimLook {
public:
    /// Cells of the picture that touch `near`, but not `except`, and are known. `levels` has a
    /// value for each of `width` pixels of each row.
    RimLook(const Activity& activity, const std::vector<std::uint8_t>& levels, int width,
            const OfxRectI& near, const OfxRectI& except);

    bool isEmpty() const { return cells_.empty(); }
    const std::vector<PlacedLook>& cells() const { return cells_; }
    /// How much the tones change at each scale in the cells around; the nearer they are, and the
    /// more alike in colour, the more they count.
    std::array<float, kScales> expectedChange(const PlacedLook& cell) const;
    /// What all but a tenth of the cells exceed: below it, something was blurred.
    const std::array<float, kScales>& calmestChange() const { return calmest_; }
    /// How unlike all cells around a look is at this place, in tones; cells that are further away
    /// than the nearest count as less alike.
    double strangeness(const PlacedLook& cell) const;

private:
    std::vector<PlacedLook> cells_;
    std::array<float, kScales> calmest_{};
};

}  // namespace Tesseret::Quality
