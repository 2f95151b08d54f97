#include "engine/boundary/Octant.h"

#include <cmath>

namespace Orvane::Engine {
namespace {

/// By the angle itself.
std::size_t octantByAngle(const PixelVec2f& g)
{
    // exact: the angle is rounded to a float and compared with float constants (odd multiples of pi
    // / 8).
    constexpr float kEighth = 0.3926991f;
    constexpr float kThreeEighths = 1.1780972f;
    constexpr float kFiveEighths = 1.9634955f;
    constexpr float kSevenEighths = 2.7488937f;
    const double angle = std::atan2(-static_cast<double>(g.x), static_cast<double>(g.y));
    const auto theta = static_cast<float>(angle);
    if (theta > kSevenEighths || theta <= -kSevenEighths) return 4;
    if (theta > kFiveEighths) return 3;
    if (theta > kThreeEighths) return 2;
    if (theta > kEighth) return 1;
    if (theta > -kEighth) return 0;
    if (theta > -kThreeEighths) return 7;
    if (theta > -kFiveEighths) return 6;
    return 5;
}

}  // namespace

std::size_t octantOf(const PixelVec2f& g)
{
    // Slopes decide unless the angle is so close to a limit that its rounding could: a float angle
    // is off by 2e-7 at most, and the limits by less.
    constexpr double kTanEighth = 0.41421356237309503;
    constexpr double kClose = 1e-5;
    const double x = g.y, y = -static_cast<double>(g.x);
    const double fromX = std::abs(y) - kTanEighth * std::abs(x);
    const double fromY = std::abs(x) - kTanEighth * std::abs(y);
    const double close = kClose * (std::abs(x) + std::abs(y));
    const bool isClear = std::abs(fromX) > close && std::abs(fromY) > close;  // false for NaN
    if (!isClear) return octantByAngle(g);
    if (fromX < 0.0) return x > 0.0 ? 0 : 4;
    if (fromY < 0.0) return y > 0.0 ? 2 : 6;
    if (y > 0.0) return x > 0.0 ? 1 : 3;
    return x > 0.0 ? 7 : 5;
}

}  // namespace Orvane::Engine
