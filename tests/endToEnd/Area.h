#pragma once

/// Areas of pictures, and the pixels of them that masked renders keep and replace.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "tests/endToEnd/Rig.h"

namespace Tesseret::EndToEnd {

/// Nothing is masked.
inline double nothing(int, int)
{
    return 0.0;
}

inline Shape box(int x0, int y0, int x1, int y1, double value = 1.0)
{
    return [=](int x, int y) { return x >= x0 && x < x1 && y >= y0 && y < y1 ? value : 0.0; };
}

/// A set of pixels of a picture and of a margin round it.
class Area {
public:
    Area(const OfxRectI& picture, const Shape& shape)
        : x0_(picture.x1 - kMargin),
          y0_(picture.y1 - kMargin),
          width_(picture.x2 - picture.x1 + 2 * kMargin),
          height_(picture.y2 - picture.y1 + 2 * kMargin)
    {
        for (int y = y0_; y < y0_ + height_; ++y) {
            for (int x = x0_; x < x0_ + width_; ++x) inside_.push_back(shape(x, y) > 0.0 ? 1 : 0);
        }
    }
    bool has(int x, int y) const { return inside_[indexOf(x - x0_, y - y0_)] != 0; }
    /// Widened by this distance in x and in y.
    Area grown(int reach) const { return spread(reach, 1, 0).spread(reach, 0, 1); }

private:
    static constexpr int kMargin = 30;

    std::size_t indexOf(int column, int row) const
    {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(width_) +
               static_cast<std::size_t>(column);
    }
    Area spread(int reach, int dx, int dy) const
    {
        Area all = *this;
        for (int y = 0; y < height_; ++y) {
            for (int x = 0; x < width_; ++x) {
                if (inside_[indexOf(x, y)] == 0) continue;
                for (int i = -reach; i <= reach; ++i) {
                    const int column = std::clamp(x + i * dx, 0, width_ - 1);
                    const int row = std::clamp(y + i * dy, 0, height_ - 1);
                    all.inside_[indexOf(column, row)] = 1;
                }
            }
        }
        return all;
    }

    int x0_, y0_, width_, height_;
    std::vector<char> inside_;
};

/// Farther from the region than this, in x or in y, the source stays: three boxes for the band and
/// three for the softening. All lengths are pixels.
inline int reachOf(double pathWidth, double edgeBlend)
{
    const auto boxes = [](double radius) { return 3 * (static_cast<int>(std::ceil(radius)) + 1); };
    return boxes(pathWidth) + (edgeBlend > 0.01 ? boxes(edgeBlend) : 0);
}

/// Whether R, G and B of two pictures of one depth are the same at a pixel, bit for bit.
inline bool sameColours(const Picture& a, const Picture& b, int x, int y)
{
    const std::size_t bytes = 3 * channelBytes(a.depth());
    return std::memcmp(a.pixel<char>(x, y), b.pixel<char>(x, y), bytes) == 0;
}

/// Whether R, G and B outside of an area are the source's, bit for bit.
inline ::testing::AssertionResult keepsOutside(const Area& area, const Picture& source,
                                               const Picture& picture)
{
    const OfxRectI bounds = picture.bounds();
    for (int y = bounds.y1; y < bounds.y2; ++y) {
        for (int x = bounds.x1; x < bounds.x2; ++x) {
            if (area.has(x, y) || sameColours(source, picture, x, y)) continue;
            return ::testing::AssertionFailure() << "changed at " << x << ", " << y;
        }
    }
    return ::testing::AssertionSuccess();
}

/// Whether nearly all of a region was replaced: the texture may agree with the source by chance.
inline ::testing::AssertionResult fills(const Shape& region, const Picture& source,
                                        const Picture& picture)
{
    const OfxRectI bounds = picture.bounds();
    int pixels = 0, changed = 0;
    for (int y = bounds.y1; y < bounds.y2; ++y) {
        for (int x = bounds.x1; x < bounds.x2; ++x) {
            if (region(x, y) == 0.0) continue;
            ++pixels;
            changed += !sameColours(source, picture, x, y);
        }
    }
    if (changed * 10 >= pixels * 9) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << changed << " of " << pixels << " were replaced";
}

}  // namespace Tesseret::EndToEnd
