#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace Tesseret::Quality {

/// The median, the larger of two in the middle; 0 without values. Changes their order.
inline float middle(std::vector<float>& values)
{
    if (values.empty()) return 0;
    const auto at = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

}  // namespace Tesseret::Quality
