#pragma once

#include <cstdint>

namespace Orvane::Engine {

/// The engine's random generator: two steps of a 32-bit linear congruential generator for each
/// number of 15 bits. The sequence depends on the seed only.
class Random {
public:
    explicit Random(std::uint32_t seed) : state_(seed) {}

    /// The next number, 0 to 32767.
    int next()
    {
        const std::uint32_t low = step();
        const std::uint32_t high = step();
        return static_cast<int>(high ^ (low << 7));
    }

private:
    std::uint32_t step()
    {
        state_ = state_ * 1103515245u + 12345u;
        return (state_ >> 16) & 0xffu;
    }

    std::uint32_t state_;
};

/// An integer drawn evenly from [0, n), or from (n, 0] when n is negative.
inline int drawBelow(Random& random, std::int64_t n)
{
    // exact: the draw is r times the float nearest 1/32767, which is 32769 / 2^30, so 64-bit
    // integers hold the product for every n of 33 bits, and `/` drops the fraction toward zero.
    const std::int64_t r = random.next();
    return static_cast<int>(r * 32769 * n / (std::int64_t{1} << 30));
}

}  // namespace Orvane::Engine
