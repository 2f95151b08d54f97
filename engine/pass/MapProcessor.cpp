#include "engine/pass/MapProcessor.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace Orvane::Engine {
namespace {

struct Ends {
    int begin, end;  ///< half-open
};

/// The stored range of an axis in absolute coordinates.
Ends storedEnds(const MapAxis& axis)
{
    return {axis.origin + axis.storeStart, axis.origin + axis.storeEnd + 1};
}

/// A range whose two inclusive ends are clamped to the stored range.
Ends clampedTo(const Ends& stored, int begin, int end)
{
    if (stored.begin >= stored.end) return stored;
    const int last = static_cast<int>(
        std::clamp<std::int64_t>(std::int64_t{end} - 1, stored.begin, stored.end - 1));
    return {std::clamp(begin, stored.begin, stored.end - 1), last + 1};
}

}  // namespace

void MapProcessor::process(const MapDomain& target)
{
    clampRegion(target);
    MultiProcessor::process();
}

void MapProcessor::setRegion(int x0, int y0, int x1, int y1)
{
    setRegion(Region{x0, y0, x1 + 1, y1 + 1});
}

void MapProcessor::setRegion(const Region& region)
{
    region_ = region;
    explicitRegion_ = true;
}

void MapProcessor::copyRegion(const MapProcessor& other)
{
    region_ = other.region_;
    explicitRegion_ = other.explicitRegion_;
}

void MapProcessor::clampRegion(const MapDomain& target)
{
    Ends x = storedEnds(target.xAxis());
    Ends y = storedEnds(target.yAxis());
    if (explicitRegion_) {
        x = clampedTo(x, region_.x0, region_.x1);
        y = clampedTo(y, region_.y0, region_.y1);
    }
    region_ = {x.begin, y.begin, x.end, y.end};
    // A region that covers a whole map at the origin counts as not set, so that the node covers the
    // next map whole as well.
    const bool wholeMap = region_.x0 == 0 && region_.y0 == 0 && region_.x1 == target.width() &&
                          region_.y1 == target.height();
    if (wholeMap) explicitRegion_ = false;
}

RowRange MapProcessor::threadRows() const
{
    RowRange rows{region_.y0, region_.y1};
    threadRange(rows.begin, rows.end);
    return rows;
}

void MapProcessor::reportMap(const char* entry, const char* problem)
{
    std::fprintf(stderr, "Map passed into %s::process is %s\n", entry, problem);
}

}  // namespace Orvane::Engine
