#include "quality/Activity.h"

#include <cstdlib>

namespace Tesseret::Quality {
namespace {

/// The mean absolute difference between neighbouring squares of 2^level pixels of a cell.
float change(const PatchPyramid& pixels, int x, int y, int level)
{
    const int apart = 1 << level;
    // Every second pixel is enough at the finest scale.
    const int step = level == 0 ? 2 : apart;
    std::int32_t sum = 0, count = 0;
    for (int dy = 0; dy + 2 * apart <= kCell; dy += step) {
        for (int dx = 0; dx + 2 * apart <= kCell; dx += step) {
            const std::int16_t* a = pixels.sample(x + dx, y + dy, level);
            const std::int16_t* right = pixels.sample(x + dx + apart, y + dy, level);
            const std::int16_t* above = pixels.sample(x + dx, y + dy + apart, level);
            for (int c = 0; c < 3; ++c)
                sum += std::abs(a[c] - right[c]) + std::abs(a[c] - above[c]);
            count += 6;
        }
    }
    return float(sum) / float(count);
}

}  // namespace

CellLook cellLook(const PatchPyramid& pixels, int x, int y)
{
    CellLook look;
    std::array<std::int32_t, 3> sum{};
    for (int dy = 0; dy < kCell; dy += 4) {
        for (int dx = 0; dx < kCell; dx += 4) {
            const std::int16_t* mean = pixels.sample(x + dx, y + dy, 2);
            for (std::size_t c = 0; c < 3; ++c) sum[c] += mean[c];
        }
    }
    for (std::size_t c = 0; c < 3; ++c) look.colour[c] = float(sum[c]) / 16;
    for (int scale = 0; scale < kScales; ++scale) {
        look.change[std::size_t(scale)] = change(pixels, x, y, scale);
    }
    return look;
}

Activity::Activity(const PatchPyramid& pixels)
    : columns_(pixels.width() / kCell), rows_(pixels.height() / kCell)
{
    cells_.reserve(std::size_t(columns_) * std::size_t(rows_));
    for (int row = 0; row < rows_; ++row) {
        for (int column = 0; column < columns_; ++column) {
            cells_.push_back(cellLook(pixels, column * kCell, row * kCell));
        }
    }
}

float unlikeness(const CellLook& a, const CellLook& b)
{
    float sum = 0;
    for (std::size_t c = 0; c < 3; ++c) {
        const float colour = a.colour[c] - b.colour[c], change = a.change[c] - b.change[c];
        sum += colour * colour + 4 * change * change;
    }
    return sum;
}

}  // namespace Tesseret::Quality
