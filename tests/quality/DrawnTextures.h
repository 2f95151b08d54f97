#pragma once

/// Textures and fills drawn by formulas, RGBA at byte depth. Tones are 0 to 255.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>

#include "picture/Picture.h"

namespace Tesseret::Quality::Testing {

inline constexpr int kSide = 320;
inline constexpr OfxRectI kArea{112, 112, 208, 208};

/// 0 to 1, by a mix of the arguments' bits.
inline double hashed(int x, int y, int salt)
{
    auto h = std::uint32_t(x) * 0x9E3779B1u ^ std::uint32_t(y) * 0x85EBCA6Bu ^
             std::uint32_t(salt) * 0xC2B2AE35u;
    h = (h ^ (h >> 15)) * 0x2C1B3C6Du;
    h = (h ^ (h >> 12)) * 0x297A2D39u;
    return double((h ^ (h >> 15)) >> 8) / double(1 << 24);
}

using Tone = std::function<double(int x, int y)>;

/// Stones of about `size` pixels, each of its own brightness, with dark joints between them.
inline Tone stones(int size, int salt = 1)
{
    return [size, salt](int x, int y) {
        double nearest = 1e9, second = 1e9, tone = 0;
        const int column = x / size, row = y / size;
        for (int r = row - 1; r <= row + 1; ++r) {
            for (int c = column - 1; c <= column + 1; ++c) {
                const double dx = (c + hashed(c, r, salt)) * size - x;
                const double dy = (r + hashed(c, r, salt + 1)) * size - y;
                const double distance = std::sqrt(dx * dx + dy * dy);
                if (distance < nearest) {
                    second = nearest;
                    nearest = distance;
                    tone = 120 + 70 * hashed(c, r, salt + 2);
                } else {
                    second = std::min(second, distance);
                }
            }
        }
        return (second - nearest < 2.5 ? 50 : tone) + 12 * hashed(x, y, salt + 3);
    };
}

/// Checks of `size` pixels, woven.
inline Tone checks(int size)
{
    return [size](int x, int y) {
        const int lit = (x / size + y / size) % 2;
        return 70 + 110.0 * lit + ((x / 2 + y / 2) % 2) * 15 + 8 * hashed(x, y, 9);
    };
}

/// A sky: a slow gradient with a little noise.
inline double sky(int x, int y)
{
    return 150 + 0.2 * y + 0.05 * x + 2 * hashed(x, y, 5);
}

/// Below `border`, stones; above, sky.
inline Tone skyOverStones(int border)
{
    return [border, ground = stones(14)](int x, int y) {
        return y < border ? ground(x, y) : sky(x, y) + 40;
    };
}

inline void draw(Picture& picture, const Tone& tone, const OfxRectI& box)
{
    for (int y = box.y1; y < box.y2; ++y) {
        for (int x = box.x1; x < box.x2; ++x) {
            const double value = tone(x, y);
            auto* p = picture.pixel<std::uint8_t>(x, y);
            p[0] = std::uint8_t(std::clamp(value, 0.0, 255.0));
            p[1] = std::uint8_t(std::clamp(0.9 * value, 0.0, 255.0));
            p[2] = std::uint8_t(std::clamp(0.7 * value, 0.0, 255.0));
            p[3] = 255;
        }
    }
}

inline Picture drawn(const Tone& tone)
{
    Picture picture({0, 0, kSide, kSide}, Depth::Byte);
    draw(picture, tone, picture.bounds());
    return picture;
}

/// Marks a box as lost.
inline Picture lostBox(const OfxRectI& box = kArea)
{
    Picture lost({0, 0, kSide, kSide}, Depth::Byte, Components::Alpha);
    for (int y = box.y1; y < box.y2; ++y) {
        for (int x = box.x1; x < box.x2; ++x) *lost.pixel<std::uint8_t>(x, y) = 255;
    }
    return lost;
}

/// The picture with a box drawn anew.
inline Picture filledBy(const Picture& source, const Tone& tone, const OfxRectI& box = kArea)
{
    Picture filled = source.copied();
    draw(filled, tone, box);
    return filled;
}

/// Copies blocks of `size` pixels of a texture into the area, from known places on both sides of
/// it.
inline Tone blocksOf(const Tone& texture, int size)
{
    return [texture, size](int x, int y) {
        const int column = (x - kArea.x1) / size, row = (y - kArea.y1) / size;
        const int fromX = int(hashed(column, row, 77) * (kSide - size));
        const int room = kArea.y1 - 8 - size;
        const int fromY = int(hashed(column, row, 78) * room) +
                          (hashed(column, row, 79) < 0.5 ? 0 : kArea.y2 + 8);
        return texture(fromX + (x - kArea.x1) % size, fromY + (y - kArea.y1) % size);
    };
}

/// Means of squares round each pixel.
inline Tone blurred(const Tone& texture, int radius)
{
    return [texture, radius](int x, int y) {
        double sum = 0;
        for (int dy = -radius; dy <= radius; ++dy) {
            for (int dx = -radius; dx <= radius; ++dx) sum += texture(x + dx, y + dy);
        }
        return sum / ((2 * radius + 1) * (2 * radius + 1));
    };
}

}  // namespace Tesseret::Quality::Testing
