#include "fill/LostPixels.h"

#include <numeric>
#include <vector>

namespace Tesseret::Fill {

using Render::eachMasked;

namespace {

/// 255 for each masked pixel.
Picture marked(const Picture& matte, Render::Polarity polarity, const OfxRectI& bounds)
{
    constexpr std::uint8_t kMarked = 255;
    Picture marks(bounds, Depth::Byte, Components::Alpha);
    eachMasked(matte, polarity, [&](int x, int y) {
        if (marks.contains(x, y)) *marks.pixel<std::uint8_t>(x, y) = kMarked;
    });
    return marks;
}

}  // namespace

Picture lostPixels(const Render::MatteAreas& areas, Render::Polarity polarity,
                   const OfxRectI& bounds)
{
    std::vector<std::size_t> all(areas.count());
    std::iota(all.begin(), all.end(), std::size_t{0});
    return marked(areas.only(all, areas.matte().bounds()), polarity, bounds);
}

Picture areaPixels(const Render::MatteAreas& areas, Render::Polarity polarity, std::size_t area)
{
    const OfxRectI& box = areas.box(area);
    return marked(areas.alone(area, box), polarity, box);
}

std::size_t pixelsOf(const Render::MatteAreas& areas, Render::Polarity polarity, std::size_t area)
{
    std::size_t count = 0;
    eachMasked(areas.alone(area, areas.box(area)), polarity, [&](int, int) { ++count; });
    return count;
}

}  // namespace Tesseret::Fill
