#include "fill/LostPixels.h"

#include <numeric>
#include <vector>

namespace Tesseret::Fill {

using Render::atDepth;

namespace {

/// Calls `mark(x, y)` for each masked pixel.
void eachMasked(const Picture& matte, Render::Polarity polarity, const auto& mark)
{
    const OfxRectI bounds = matte.bounds();
    atDepth(matte.depth(), [&]<typename Channel>(Channel) {
        for (int y = bounds.y1; y < bounds.y2; ++y) {
            const auto* value = matte.pixel<Channel>(bounds.x1, y);
            for (int x = bounds.x1; x < bounds.x2; ++x, ++value) {
                if (Render::isMasked(Render::masking(*value, polarity))) mark(x, y);
            }
        }
    });
}

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
