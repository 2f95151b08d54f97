#include "fill/LostPixels.h"

#include <numeric>
#include <vector>

namespace Tesseret::Fill {

using Render::eachMasked;

Picture lostPixels(const Render::MatteAreas& areas, Render::Polarity polarity,
                   const OfxRectI& bounds)
{
    constexpr std::uint8_t kLost = 255;
    Picture lost(bounds, Depth::Byte, Components::Alpha);
    std::vector<std::size_t> all(areas.count());
    std::iota(all.begin(), all.end(), std::size_t{0});
    const Picture masked = areas.only(all, areas.matte().bounds());
    eachMasked(masked, polarity, [&](int x, int y) {
        if (lost.contains(x, y)) *lost.pixel<std::uint8_t>(x, y) = kLost;
    });
    return lost;
}

std::size_t pixelsOf(const Render::MatteAreas& areas, Render::Polarity polarity, std::size_t area)
{
    std::size_t count = 0;
    eachMasked(areas.alone(area, areas.box(area)), polarity, [&](int, int) { ++count; });
    return count;
}

}  // namespace Tesseret::Fill
