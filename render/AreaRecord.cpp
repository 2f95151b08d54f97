#include "render/AreaRecord.h"

#include <cmath>
#include <utility>

namespace Tesseret::Render {

namespace {

std::size_t indexIn(const OfxRectI& box, int x, int y)
{
    return static_cast<std::size_t>(y - box.y1) * static_cast<std::size_t>(box.x2 - box.x1) +
           static_cast<std::size_t>(x - box.x1);
}

/// An area without its mask, and the mask where it is wanted.
RecordedArea recorded(const MatteAreas& areas, std::size_t area, bool keepsMask)
{
    RecordedArea found;
    found.box = areas.box(area);
    if (keepsMask) found.masked.resize(indexIn(found.box, found.box.x1, found.box.y2));
    double count = 0.0;
    eachMasked(areas.alone(area, found.box), areas.polarity(), [&](int x, int y) {
        found.middleX += x;
        found.middleY += y;
        ++count;
        if (keepsMask) found.masked[indexIn(found.box, x, y)] = true;
    });
    found.middleX /= count;
    found.middleY /= count;
    return found;
}

}  // namespace

OfxRectI movedBox(const OfxRectI& box, PixelMotion motion)
{
    return {box.x1 + motion.x, box.y1 + motion.y, box.x2 + motion.x, box.y2 + motion.y};
}

bool RecordedArea::has(int x, int y) const
{
    const bool isInside = x >= box.x1 && x < box.x2 && y >= box.y1 && y < box.y2;
    return isInside && masked[indexIn(box, x, y)];
}

AreaRecord::AreaRecord(std::vector<RecordedArea> areas) : areas_(std::move(areas))
{
    for (const RecordedArea& area : areas_) last_.push_back(area.box);
}

void AreaRecord::begin(const MatteAreas& areas, std::size_t count)
{
    std::vector<RecordedArea> found;
    for (std::size_t area = 0; area < count; ++area) {
        found.push_back(recorded(areas, area, /*keepsMask=*/true));
    }
    *this = AreaRecord(std::move(found));
}

bool AreaRecord::matches(const MatteAreas& areas, std::size_t count, bool follows) const
{
    if (areas_.size() != count) return false;
    for (std::size_t area = 0; area < count; ++area) {
        const OfxRectI& place = follows ? last_[area] : areas_[area].box;
        if (Tesseret::isEmpty(intersection(areas.box(area), place))) return false;
    }
    return true;
}

void AreaRecord::advance(const MatteAreas& areas, std::size_t count)
{
    for (std::size_t area = 0; area < count; ++area) last_[area] = areas.box(area);
}

PixelMotion AreaRecord::motion(const MatteAreas& areas, std::size_t area) const
{
    const RecordedArea now = recorded(areas, area, /*keepsMask=*/false);
    return {static_cast<int>(std::lround(now.middleX - areas_[area].middleX)),
            static_cast<int>(std::lround(now.middleY - areas_[area].middleY))};
}

bool AreaRecord::covers(const MatteAreas& areas, std::size_t area, PixelMotion moved) const
{
    bool covers = true;
    eachMasked(areas.alone(area, areas.box(area)), areas.polarity(), [&](int x, int y) {
        covers = covers && areas_[area].has(x - moved.x, y - moved.y);
    });
    return covers;
}

}  // namespace Tesseret::Render
