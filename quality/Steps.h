#pragma once

/// Steps in brightness and colour.

#include <vector>

#include "quality/Region.h"

namespace Tesseret::Quality {

/// Differences between the means of two neighbouring rectangles of 8 x 32 pixels, in tones.
struct StepSamples {
    std::vector<float> rim;     ///< one changed, the other did not
    std::vector<float> inside;  ///< both changed
    /// From a rectangle that did not change to one further in, beyond the soft part of the cut.
    std::vector<float> across;
};

StepSamples measureSteps(const Region& region);

}  // namespace Tesseret::Quality
