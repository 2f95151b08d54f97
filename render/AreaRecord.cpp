#include "render/AreaRecord.h"

#include <cmath>

namespace Tesseret::Render {

namespace {

bool hasMasked(const Picture& matte, Polarity polarity, int x, int y)
{
    return matte.contains(x, y) && atDepth(matte.depth(), [&]<typename Channel>(Channel) {
               return isMasked(masking(*matte.pixel<Channel>(x, y), polarity));
           });
}

}  // namespace

OfxRectI movedBox(const OfxRectI& box, PixelMotion motion)
{
    return {box.x1 + motion.x, box.y1 + motion.y, box.x2 + motion.x, box.y2 + motion.y};
}

AreaRecord::Point AreaRecord::middleOf(const MatteAreas& areas, std::size_t area)
{
    double count = 0.0;
    Point sum{0.0, 0.0};
    eachMasked(areas.alone(area, areas.box(area)), areas.polarity(), [&](int x, int y) {
        sum.x += x;
        sum.y += y;
        ++count;
    });
    return {sum.x / count, sum.y / count};
}

void AreaRecord::begin(const MatteAreas& areas, std::size_t count)
{
    *this = {};
    for (std::size_t area = 0; area < count; ++area) {
        boxes_.push_back(areas.box(area));
        masks_.push_back(areas.alone(area, areas.box(area)));
        middles_.push_back(middleOf(areas, area));
    }
    last_ = boxes_;
}

bool AreaRecord::matches(const MatteAreas& areas, std::size_t count, bool follows) const
{
    const std::vector<OfxRectI>& places = follows ? last_ : boxes_;
    if (places.size() != count) return false;
    for (std::size_t area = 0; area < count; ++area) {
        if (Tesseret::isEmpty(intersection(areas.box(area), places[area]))) return false;
    }
    return true;
}

void AreaRecord::advance(const MatteAreas& areas, std::size_t count)
{
    for (std::size_t area = 0; area < count; ++area) last_[area] = areas.box(area);
}

PixelMotion AreaRecord::motion(const MatteAreas& areas, std::size_t area) const
{
    const Point middle = middleOf(areas, area);
    return {static_cast<int>(std::lround(middle.x - middles_[area].x)),
            static_cast<int>(std::lround(middle.y - middles_[area].y))};
}

bool AreaRecord::covers(const MatteAreas& areas, std::size_t area, PixelMotion moved) const
{
    bool covers = true;
    eachMasked(areas.alone(area, areas.box(area)), areas.polarity(), [&](int x, int y) {
        covers = covers && hasMasked(masks_[area], areas.polarity(), x - moved.x, y - moved.y);
    });
    return covers;
}

}  // namespace Tesseret::Render
