#include "engine/map/MapDomain.h"

#include <utility>

namespace Orvane::Engine {

void MapDomain::setActiveRange(int x0, int x1, int y0, int y1)
{
    xAxis_.setActiveRange(x0, x1);
    yAxis_.setActiveRange(y0, y1);
}

void MapDomain::setEdgeMode(EdgeMode xMode, EdgeMode yMode)
{
    xAxis_.edgeMode = xMode;
    yAxis_.edgeMode = yMode;
}

void MapDomain::setOffset(int x, int y)
{
    xAxis_.setOffset(x);
    yAxis_.setOffset(y);
}

void MapDomain::setOffset(float x, float y)
{
    xAxis_.setOffset(x);
    yAxis_.setOffset(y);
}

void MapDomain::setStoredRange(int x0, int x1, int y0, int y1)
{
    xAxis_.setStoredRange(x0, x1);
    yAxis_.setStoredRange(y0, y1);
    updateFlags();
}

void MapDomain::resetStoredRange()
{
    xAxis_.resetStoredRange();
    yAxis_.resetStoredRange();
    updateFlags();
}

void MapDomain::setClipToStored(bool on)
{
    xAxis_.setClipToStored(on);
    yAxis_.setClipToStored(on);
    updateFlags();
}

void MapDomain::reapplyActiveRange()
{
    setActiveRange(xAxis_.activeStart, xAxis_.activeEnd, yAxis_.activeStart, yAxis_.activeEnd);
}

void MapDomain::setSize(int width, int height)
{
    xAxis_.init(width, EdgeMode::EdgeNone);
    yAxis_.init(height, EdgeMode::EdgeNone);
    updateFlags();
}

void MapDomain::setOrigin(int x, int y)
{
    xAxis_.origin = x;
    yAxis_.origin = y;
}

void MapDomain::placeAt(int x, int y)
{
    setOffset(x, y);
    setOrigin(x, y);
}

void MapDomain::storeOnly(const Region& part)
{
    setStoredRange(part.x0 - xAxis_.origin, part.x1 - 1 - xAxis_.origin, part.y0 - yAxis_.origin,
                   part.y1 - 1 - yAxis_.origin);
}

Region MapDomain::extent() const
{
    return {xAxis_.origin, yAxis_.origin, xAxis_.origin + xAxis_.size, yAxis_.origin + yAxis_.size};
}

Region MapDomain::storedExtent() const
{
    return {xAxis_.origin + xAxis_.storeStart, yAxis_.origin + yAxis_.storeStart,
            xAxis_.origin + xAxis_.storeEnd + 1, yAxis_.origin + yAxis_.storeEnd + 1};
}

void MapDomain::copyGeometry(const MapDomain& other)
{
    xAxis_ = other.xAxis_;
    yAxis_ = other.yAxis_;
    flags_ = other.flags_;
}

void MapDomain::swapGeometry(MapDomain& other) noexcept
{
    std::swap(xAxis_, other.xAxis_);
    std::swap(yAxis_, other.yAxis_);
    std::swap(flags_, other.flags_);
}

void MapDomain::updateFlags()
{
    flags_ = xAxis_.storesPart() || yAxis_.storesPart() ? kStoresPart : 0;
}

}  // namespace Orvane::Engine
