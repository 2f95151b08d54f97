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
