#pragma once

/// Counts of marked pixels in rectangles.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "picture/Picture.h"

namespace Tesseret::Quality {

/// Counts in constant time (Crow, "Summed-Area Tables for Texture Mapping", 1984). Coordinates
/// start at the first pixel.
class PixelSums {
public:
    PixelSums() = default;
    /// Of the pixels of a byte picture that are not 0.
    explicit PixelSums(const Picture& marks) : PixelSums(marks.width(), marks.height())
    {
        for (int y = 0; y < height_; ++y) {
            addRow(y, reinterpret_cast<const std::uint8_t*>(marks.row(marks.bounds().y1 + y)));
        }
    }
    PixelSums(const std::vector<std::uint8_t>& marks, int width, int height)
        : PixelSums(width, height)
    {
        for (int y = 0; y < height; ++y) {
            addRow(y, marks.data() + std::size_t(y) * std::size_t(width));
        }
    }

    int width() const { return width_; }
    int height() const { return height_; }
    /// Marked pixels of the rectangle, which must lie inside.
    int sum(int x1, int y1, int x2, int y2) const
    {
        return int(at(x2, y2) - at(x1, y2) - at(x2, y1) + at(x1, y1));
    }
    int sum(const OfxRectI& box) const { return sum(box.x1, box.y1, box.x2, box.y2); }

private:
    PixelSums(int width, int height)
        : width_(width),
          height_(height),
          sums_((std::size_t(width) + 1) * (std::size_t(height) + 1))
    {}

    void addRow(int y, const std::uint8_t* marks)
    {
        const std::size_t row = std::size_t(width_) + 1;
        const std::uint32_t* below = sums_.data() + std::size_t(y) * row + 1;
        std::uint32_t* to = sums_.data() + std::size_t(y + 1) * row + 1;
        std::uint32_t sum = 0;
        for (int x = 0; x < width_; ++x) {
            sum += marks[x] != 0 ? 1 : 0;
            to[x] = below[x] + sum;
        }
    }

    std::uint32_t at(int x, int y) const
    {
        return sums_[std::size_t(y) * (std::size_t(width_) + 1) + std::size_t(x)];
    }

    int width_ = 0, height_ = 0;
    std::vector<std::uint32_t> sums_;
};

}  // namespace Tesseret::Quality
