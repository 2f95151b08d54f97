#include "quality/PatchPyramid.h"

#include <algorithm>
#include <utility>

namespace Tesseret::Quality {
namespace {

/// Means of 2 x 2 samples of a plane, at every second sample from (shiftX, shiftY) on; beyond the
/// last sample it is repeated.
void halve(const std::int16_t* from, int width, int height, int shiftX, int shiftY,
           std::int16_t* to, int toWidth, int toHeight)
{
    const auto row = [&](int y) {
        return from + 3 * std::size_t(std::min(y, height - 1)) * std::size_t(width);
    };
    // Pairs that lie inside.
    const int inside = std::clamp((width - shiftX) / 2, 0, toWidth);
    for (int y = 0; y < toHeight; ++y) {
        const std::int16_t* lower = row(2 * y + shiftY);
        const std::int16_t* upper = row(2 * y + shiftY + 1);
        const std::int16_t* a = lower + 3 * shiftX;
        const std::int16_t* b = upper + 3 * shiftX;
        for (int x = 0; x < inside; ++x, a += 6, b += 6, to += 3) {
            for (int c = 0; c < 3; ++c) {
                to[c] = std::int16_t((a[c] + a[c + 3] + b[c] + b[c + 3] + 2) >> 2);
            }
        }
        for (int x = inside; x < toWidth; ++x, to += 3) {
            const int last = 3 * (width - 1);
            for (int c = 0; c < 3; ++c) {
                to[c] = std::int16_t((lower[last + c] + upper[last + c] + 1) >> 1);
            }
        }
    }
}

}  // namespace

PatchPyramid::PatchPyramid(Tones tones, int levels)
    : width_(tones.width), height_(tones.height), levels_(std::size_t(levels))
{
    int width = width_, height = height_;
    levels_[0] = {3 * std::size_t(width), 3 * std::size_t(width) * std::size_t(height),
                  std::move(tones.values)};
    for (int l = 1; l < levels; ++l) {
        const Level& below = levels_[std::size_t(l - 1)];
        Level& level = levels_[std::size_t(l)];
        const int halfWidth = (width + 1) / 2, halfHeight = (height + 1) / 2;
        level.rowValues = 3 * std::size_t(halfWidth);
        level.planeValues = level.rowValues * std::size_t(halfHeight);
        const int half = 1 << (l - 1), step = 1 << skipped(l), planes = 2 * half / step;
        level.values = std::make_unique_for_overwrite<std::int16_t[]>(
            level.planeValues * std::size_t(planes) * std::size_t(planes));
        std::int16_t* to = level.values.get();
        for (int y = 0; y < 2 * half; y += step) {
            for (int x = 0; x < 2 * half; x += step, to += level.planeValues) {
                const int skip = skipped(l - 1);
                const int column = (x % half) >> skip, row = (y % half) >> skip;
                const std::size_t plane =
                    std::size_t(row) * std::size_t(half >> skip) + std::size_t(column);
                halve(below.values.get() + plane * below.planeValues, width, height, x / half,
                      y / half, to, halfWidth, halfHeight);
            }
        }
        width = halfWidth;
        height = halfHeight;
    }
}

std::int32_t patchDifference(const std::int16_t* a, std::size_t rowA, const std::int16_t* b,
                             std::size_t rowB, std::int32_t limit)
{
    std::int32_t sum = 0;
    for (int y = 0; y < kPatch; ++y, a += rowA, b += rowB) {
        for (int i = 0; i < 3 * kPatch; ++i) {
            // Sixteen bits, so that compilers use the instruction for sums of products.
            const auto difference = std::int16_t(a[i] - b[i]);
            sum += std::int32_t(difference) * std::int32_t(difference);
        }
        if ((y & 1) != 0 && sum >= limit) break;
    }
    return sum;
}

}  // namespace Tesseret::Quality
