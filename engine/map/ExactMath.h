#pragma once

#include <cmath>
#include <cstdint>

namespace Orvane::Engine {

/// Arithmetic whose result must not depend on the machine, and conversions that are defined for
/// every value a host may pass.

/// Integers made from a host's values are clamped to this, so that the difference of two fits an
/// int.
inline constexpr int kNumberLimit = 1'000'000'000;

/// `value` truncated and clamped to +-kNumberLimit; 0 for NaN.
template <typename Float>
constexpr int truncateToInt(Float value)
{
    if (!(value == value)) return 0;
    if (value >= static_cast<Float>(kNumberLimit)) return kNumberLimit;
    if (value <= -static_cast<Float>(kNumberLimit)) return -kNumberLimit;
    return static_cast<int>(value);
}

/// The largest integer not above `value`, clamped like truncateToInt.
template <typename Float>
int floorToInt(Float value)
{
    return truncateToInt(std::floor(value));
}

/// A 64-bit integer clamped to +-kNumberLimit.
constexpr int limitToInt(std::int64_t value)
{
    if (value > kNumberLimit) return kNumberLimit;
    if (value < -kNumberLimit) return -kNumberLimit;
    return static_cast<int>(value);
}

}  // namespace Orvane::Engine
