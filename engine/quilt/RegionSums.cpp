#include "engine/quilt/RegionSums.h"

#include <algorithm>

#include "engine/map/MapRow.h"

namespace Orvane::Engine {
namespace {

bool touchesByPixel(const Map<Pixel32f>& mask, int x, int y, int width, int height)
{
    for (int j = 0; j < height; ++j) {
        const RowReader row(mask, y + j);
        for (int i = 0; i < width; ++i) {
            if (row[x + i] != 0.0f) return true;
        }
    }
    return false;
}

}  // namespace

RegionSums::RegionSums(const Map<Pixel32f>& mask) : mask_(&mask)
{
    const auto isNone = [](const MapAxis& axis) { return axis.edgeMode == EdgeMode::EdgeNone; };
    const bool zeroOutside =
        isNone(mask.xAxis()) && isNone(mask.yAxis()) && mask.fillValue() == 0.0f;
    if (!zeroOutside || !mask.isUsable()) return;
    x_ = std::int64_t{mask.xAxis().offset} + mask.xAxis().storeStart;
    y_ = std::int64_t{mask.yAxis().offset} + mask.yAxis().storeStart;
    width_ = mask.xAxis().storeLength;
    height_ = mask.yAxis().storeLength;
    // A mask with more pixels than the table can count is tested pixel by pixel.
    if (width_ * height_ > std::int64_t{UINT32_MAX}) return;
    sums_.assign(static_cast<std::size_t>((width_ + 1) * (height_ + 1)), 0);
    for (std::int64_t row = 0; row < height_; ++row) {
        const RowReader reader(mask, static_cast<int>(y_ + row));
        std::uint32_t inRow = 0;
        for (std::int64_t column = 0; column < width_; ++column) {
            if (reader[static_cast<int>(x_ + column)] != 0.0f) ++inRow;
            sums_[static_cast<std::size_t>((row + 1) * (width_ + 1) + column + 1)] =
                at(column + 1, row) + inRow;
        }
    }
    isTabled_ = true;
}

bool RegionSums::touches(int x, int y, int width, int height) const
{
    if (!isTabled_) return touchesByPixel(*mask_, x, y, width, height);
    const auto column = [this](std::int64_t p) {
        return std::clamp<std::int64_t>(p - x_, 0, width_);
    };
    const auto row = [this](std::int64_t p) {
        return std::clamp<std::int64_t>(p - y_, 0, height_);
    };
    const std::int64_t x0 = column(x), x1 = column(std::int64_t{x} + width);
    const std::int64_t y0 = row(y), y1 = row(std::int64_t{y} + height);
    return at(x1, y1) - at(x0, y1) - at(x1, y0) + at(x0, y0) != 0;
}

}  // namespace Orvane::Engine
