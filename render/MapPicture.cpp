#include "render/MapPicture.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Tesseret::Render {

namespace {

struct Colour {
    double r, g, b;  ///< 0 to 1
};

constexpr Colour kNeutral{0.5, 0.5, 0.5};
constexpr Colour kDarker{0.15, 0.4, 1.0};
constexpr Colour kBrighter{1.0, 0.55, 0.05};
constexpr Colour kPath{1.0, 0.9, 0.1};
constexpr Colour kPathRim{0.55, 0.25, 0.0};
constexpr Colour kSeam{0.05, 0.05, 0.05};
constexpr double kWeakestBand = 0.25;  ///< brightness of the weakest of a band
constexpr double kUnusedGain = 0.35;   ///< brightness of a gain that is not used
constexpr double kMaxSteps = 2.0;      ///< from a gain of 1 to the full colours, in powers of two
constexpr int kRim = 1;                ///< pixels

Colour mixed(const Colour& a, const Colour& b, double share)
{
    return {std::lerp(a.r, b.r, share), std::lerp(a.g, b.g, share), std::lerp(a.b, b.b, share)};
}

void setPixel(Picture& picture, int x, int y, const Colour& colour)
{
    const auto stored = [](double value) {
        return static_cast<std::uint8_t>(std::lround(255.0 * std::clamp(value, 0.0, 1.0)));
    };
    auto* const pixel = picture.pixel<std::uint8_t>(x, y);
    pixel[0] = stored(colour.r);
    pixel[1] = stored(colour.g);
    pixel[2] = stored(colour.b);
    pixel[3] = 255;
}

const float* rowOf(const TesseretMapV1& map, int y)
{
    const auto* const first = reinterpret_cast<const std::byte*>(map.pixels);
    return reinterpret_cast<const float*>(first + (y - map.bounds.y1) * map.rowBytes);
}

/// Calls `work(x, y, value)` for every pixel of the map in the rectangle.
template <typename Work>
void forEachPixel(const TesseretMapV1& map, OfxRectI rect, const Work& work)
{
    const OfxRectI both = intersection(map.bounds, rect);
    for (int y = both.y1; y < both.y2; ++y) {
        const float* const row = rowOf(map, y);
        for (int x = both.x1; x < both.x2; ++x) work(x, y, row[x - map.bounds.x1]);
    }
}

/// Black, with `colourOf(value)` where the map has a pixel.
template <typename ColourOf>
Picture painted(const TesseretMapV1& map, const ColourOf& colourOf)
{
    Picture picture(map.fillRect, Depth::Byte);
    forEachPixel(map, map.fillRect,
                 [&](int x, int y, float value) { setPixel(picture, x, y, colourOf(value)); });
    return picture;
}

Colour grey(double value)
{
    return {value, value, value};
}

/// Hues a golden section apart differ clearly between neighbours and never repeat.
Colour blockColour(float number)
{
    if (!(number > 0.0f)) return grey(0.0);
    const double hue = 6.0 * std::fmod(static_cast<double>(number) * 0.6180339887498949, 1.0);
    const auto channel = [hue](double peak) {
        const double distance = std::abs(std::remainder(hue - peak, 6.0));
        return 0.3 + 0.65 * std::clamp(2.0 - distance, 0.0, 1.0);
    };
    return {channel(0.0), channel(2.0), channel(4.0)};
}

/// The square root makes small changes visible.
Colour gainColour(float gain)
{
    if (std::isnan(gain)) return kNeutral;
    const double steps = gain > 0.0f ? std::log2(static_cast<double>(gain)) : -kMaxSteps;
    const double share = std::sqrt(std::min(std::abs(steps) / kMaxSteps, 1.0));
    return mixed(kNeutral, steps < 0.0 ? kDarker : kBrighter, share);
}

/// 0 to 1; 0 outside the picture.
double brightness(const Picture& greys, int x, int y)
{
    return greys.contains(x, y) ? *greys.pixel<std::uint8_t>(x, y) / 255.0 : 0.0;
}

template <typename Counts>
MapRange rangeWhere(const TesseretMapV1& map, const Counts& counts)
{
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    MapRange range{kInfinity, -kInfinity};
    forEachPixel(map, map.fillRect, [&](int x, int y, float value) {
        if (!counts(x, y)) return;
        range.least = std::min(range.least, value);
        range.greatest = std::max(range.greatest, value);
    });
    return range;
}

}  // namespace

Picture greyPicture(const TesseretMapV1& map)
{
    return painted(map, [&](float value) { return grey(value / map.full); });
}

Picture bandPicture(const TesseretMapV1& map)
{
    const float strongest = rangeOf(map).greatest;
    return painted(map, [&](float value) {
        return grey(value > 0.0f ? std::lerp(kWeakestBand, 1.0, value / strongest) : 0.0);
    });
}

Picture blockPicture(const TesseretMapV1& map)
{
    Picture picture = painted(map, blockColour);
    forEachPixel(map, map.fillRect, [&](int x, int y, float number) {
        const bool left = x > map.bounds.x1 && rowOf(map, y)[x - 1 - map.bounds.x1] != number;
        const bool below = y > map.bounds.y1 && rowOf(map, y - 1)[x - map.bounds.x1] != number;
        if (left || below) setPixel(picture, x, y, kSeam);
    });
    return picture;
}

Picture gainPicture(const TesseretMapV1& map, const Picture& used)
{
    Picture picture(map.fillRect, Depth::Byte);
    forEachPixel(map, map.fillRect, [&](int x, int y, float gain) {
        const double light = std::lerp(kUnusedGain, 1.0, brightness(used, x, y));
        setPixel(picture, x, y, mixed(grey(0.0), gainColour(gain), light));
    });
    return picture;
}

MapRange rangeOf(const TesseretMapV1& map)
{
    return rangeWhere(map, [](int, int) { return true; });
}

MapRange rangeOf(const TesseretMapV1& map, const Picture& used)
{
    return rangeWhere(map, [&](int x, int y) { return brightness(used, x, y) > 0.0; });
}

Picture dimmed(const Picture& region, const Picture& band)
{
    Picture picture(region.bounds(), Depth::Byte);
    const OfxRectI all = region.bounds();
    for (int y = all.y1; y < all.y2; ++y) {
        for (int x = all.x1; x < all.x2; ++x) {
            const double inside = 0.45 * brightness(region, x, y);
            const double near = brightness(band, x, y);
            setPixel(picture, x, y,
                     {inside + 0.1 * near, inside + 0.3 * near, inside + 0.6 * near});
        }
    }
    return picture;
}

void drawPath(const TesseretPathV1& path, Picture& picture)
{
    const auto draw = [&](int x, int y, const Colour& colour) {
        if (picture.contains(x, y)) setPixel(picture, x, y, colour);
    };
    for (int i = 0; i < path.count; ++i) {
        const OfxPointI& p = path.points[i];
        for (int dy = -kRim; dy <= kRim; ++dy) {
            for (int dx = -kRim; dx <= kRim; ++dx) draw(p.x + dx, p.y + dy, kPathRim);
        }
    }
    for (int i = 0; i < path.count; ++i) draw(path.points[i].x, path.points[i].y, kPath);
}

}  // namespace Tesseret::Render
