#include "render/MattePart.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace Tesseret::Render {

namespace {

/// Decides for the pixels on a line whatever a cosine is rounded to.
constexpr double kOnTheLine = 1e-7;

std::vector<std::size_t> allOf(const MatteAreas& areas)
{
    std::vector<std::size_t> all(areas.count());
    std::iota(all.begin(), all.end(), std::size_t{0});
    return all;
}

OfxRectI boxRound(const MatteAreas& painted, const std::vector<std::size_t>& areas)
{
    OfxRectI box{0, 0, 0, 0};
    for (const std::size_t area : areas) {
        if (area >= painted.count()) continue;
        const OfxRectI& one = painted.box(area);
        if (isEmpty(box)) box = one;
        box = {std::min(box.x1, one.x1), std::min(box.y1, one.y1), std::max(box.x2, one.x2),
               std::max(box.y2, one.y2)};
    }
    return box;
}

void eraseOtherSide(Picture& matte, Polarity polarity, const LineSide& side, int top)
{
    const double angle = side.angle * std::numbers::pi / 180.0;
    const double right = std::cos(angle);
    const double down = std::sin(angle);
    const OfxRectI bounds = matte.bounds();
    atDepth(matte.depth(), [&]<typename Channel>(Channel zero) {
        const Channel unmasked = masking(zero, polarity);
        for (int y = bounds.y1; y < bounds.y2; ++y) {
            auto* value = matte.pixel<Channel>(bounds.x1, y);
            const double below = (top - (y + 0.5) - side.y) * down;
            for (int x = bounds.x1; x < bounds.x2; ++x, ++value) {
                if ((x + 0.5 - side.x) * right + below < -kOnTheLine) *value = unmasked;
            }
        }
    });
}

}  // namespace

Picture partOfMatte(const MatteAreas& painted, Polarity polarity,
                    const std::vector<std::size_t>& areas, const std::optional<LineSide>& side,
                    int top)
{
    const std::vector<std::size_t> wanted = areas.empty() ? allOf(painted) : areas;
    Picture part = painted.only(wanted, boxRound(painted, wanted));
    part.setRegionOfDefinition(painted.matte().regionOfDefinition());
    if (side) eraseOtherSide(part, polarity, *side, top);
    return part;
}

}  // namespace Tesseret::Render
