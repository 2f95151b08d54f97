#include "viewer/model/PenSnap.h"

#include <algorithm>
#include <cmath>

namespace Tesseret::Viewer {

namespace {

/// The nearer of two edges within reach; else the place itself.
double toEdge(double place, double low, double high, double reach)
{
    const double nearest = std::abs(place - low) <= std::abs(place - high) ? low : high;
    return std::abs(place - nearest) <= reach ? nearest : place;
}

}  // namespace

OfxPointD snappedPen(OfxPointD pen, const OfxRectD& box, double reach)
{
    // In a small box the centre keeps a place of its own between the edges.
    const double inX = std::min(reach, (box.x2 - box.x1) / 4.0);
    const double inY = std::min(reach, (box.y2 - box.y1) / 4.0);
    const auto limit = [reach](double place, double low, double high, double inside) {
        return place > low && place < high ? inside : reach;
    };
    OfxPointD snapped = pen;
    if (pen.y > box.y1 - reach && pen.y < box.y2 + reach) {
        snapped.x = toEdge(pen.x, box.x1, box.x2, limit(pen.x, box.x1, box.x2, inX));
    }
    if (pen.x > box.x1 - reach && pen.x < box.x2 + reach) {
        snapped.y = toEdge(pen.y, box.y1, box.y2, limit(pen.y, box.y1, box.y2, inY));
    }
    if (snapped.x != pen.x || snapped.y != pen.y) {
        // The overlay reaches a little beyond the box only.
        snapped.x = std::clamp(snapped.x, box.x1, box.x2);
        snapped.y = std::clamp(snapped.y, box.y1, box.y2);
        return snapped;
    }
    const OfxPointD centre{(box.x1 + box.x2) / 2.0, (box.y1 + box.y2) / 2.0};
    const bool isNear = std::abs(pen.x - centre.x) <= inX && std::abs(pen.y - centre.y) <= inY;
    return isNear ? centre : pen;
}

}  // namespace Tesseret::Viewer
