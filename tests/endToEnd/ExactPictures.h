#pragma once

/// Pictures made of integers only, so that their pixels are the same on every machine and with
/// every compiler. A value has 16 bits: 8-bit pictures keep the upper half of them, float pictures
/// the value times 2^-16, which is exact.

#include <cstdint>
#include <functional>
#include <memory>

#include "picture/Picture.h"

namespace Tesseret::EndToEnd {

/// The value of a channel, 0 to 65535.
using ExactValue = std::function<int(int x, int y, int channel)>;

inline void setExact(Picture& picture, int x, int y, int channel, int value)
{
    switch (picture.depth()) {
        case Depth::Byte:
            picture.pixel<std::uint8_t>(x, y)[channel] = static_cast<std::uint8_t>(value >> 8);
            break;
        case Depth::Short:
            picture.pixel<std::uint16_t>(x, y)[channel] = static_cast<std::uint16_t>(value);
            break;
        case Depth::Float:
            picture.pixel<float>(x, y)[channel] = static_cast<float>(value) / 65536.0f;
            break;
    }
}

inline std::shared_ptr<Picture> exactPicture(OfxRectI bounds, Depth depth, const ExactValue& value,
                                             Components components = Components::RGBA)
{
    auto picture = std::make_shared<Picture>(bounds, depth, components);
    for (int y = bounds.y1; y < bounds.y2; ++y) {
        for (int x = bounds.x1; x < bounds.x2; ++x) {
            for (int c = 0; c < picture->channels(); ++c) {
                setExact(*picture, x, y, c, value(x, y, c));
            }
        }
    }
    return picture;
}

/// Noise, 0 to 65535: a hash of its arguments.
inline int exactNoise(int x, int y, int channel, unsigned int seed)
{
    std::uint32_t h = seed * 0x9E3779B1u;
    for (const int part : {x, y, channel}) {
        h = (h ^ static_cast<std::uint32_t>(part)) * 0x85EBCA77u;
        h = (h ^ (h >> 15)) * 0xC2B2AE3Du;
        h ^= h >> 13;
    }
    return static_cast<int>(h >> 16);
}

/// Overlaid patches of 16, 4 and 1 pixels, on a ground that grows lighter to the right.
inline ExactValue grain(unsigned int seed)
{
    return [seed](int x, int y, int c) {
        const int value =
            (2 * exactNoise(x >> 4, y >> 4, c, seed) + exactNoise(x >> 2, y >> 2, c, seed + 1) +
             exactNoise(x, y, c, seed + 2)) /
            4;
        return value / 256 * (128 + (x & 127));
    };
}

/// The same without transparency.
inline ExactValue opaqueGrain(unsigned int seed)
{
    return [values = grain(seed)](int x, int y, int c) { return c == 3 ? 65535 : values(x, y, c); };
}

/// Patches that are all red or not at all, with a little green and blue: many errors differ in
/// their last bits only.
inline ExactValue patches(unsigned int seed)
{
    return [seed](int x, int y, int c) {
        const int noise = exactNoise(x, y, c, seed);
        if (c == 0) return exactNoise(x >> 3, y >> 3, 0, seed + 1) < 24000 ? 65535 : 0;
        return c == 3 ? noise : noise * 29 / 256;
    };
}

}  // namespace Tesseret::EndToEnd
