#pragma once

/// What is measured in a region, filled or known.

#include <array>

#include "quality/Region.h"
#include "quality/RimLook.h"
#include "quality/Steps.h"
#include "quality/UsualDifference.h"

namespace Tesseret::Quality {

/// Differences that nobody sees, in tones.
inline constexpr double kUnseen = 6;

struct Mean {
    double sum = 0;
    long count = 0;

    void add(double value);
    void add(const Mean& other);
    /// The ratio of two means; 1 when one of them is empty.
    double over(const Mean& known) const;
};

/// Differences are divided by the usual ones, and large ones are cut off.
struct Findings {
    // Fourth powers: a few large differences are seen sooner than many small ones.
    std::array<Mean, 2> rim;     ///< of patches of 8 and 16 pixels
    std::array<Mean, 2> inside;  ///< the same
    std::array<Mean, 2> large;   ///< of patches of 32 and 64 pixels
    Mean stepRim, stepInside, across;
    Mean strange;  ///< squares of how unlike cells are to the known ones around, in tones
    /// Means over the cells: how much tones change, and how much they should.
    std::array<double, kScales> change{}, expected{};
    /// The median of the cells' change, and what nearly all cells around exceed.
    std::array<double, kScales> middleChange{}, calmest{};

    /// Adds the means.
    void add(const Findings& other);
};

/// What known regions show.
struct Usual {
    UsualDifference difference;
    double step = 0, across = 0;  ///< the medians, in tones
};

Findings measure(const Region& region, const RegionMatches& matches, const StepSamples& steps,
                 const Usual& usual, const RimLook& around);

}  // namespace Tesseret::Quality
