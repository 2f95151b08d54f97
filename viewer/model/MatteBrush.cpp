#include "viewer/model/MatteBrush.h"

#include <algorithm>
#include <cmath>

namespace Tesseret::Viewer {

namespace {

/// Squared distance of a point from a line between two points.
class Segment {
public:
    Segment(OfxPointD from, OfxPointD to)
        : from_(from), along_{to.x - from.x, to.y - from.y}, square_(dot(along_, along_))
    {}

    double squaredDistance(OfxPointD point) const
    {
        const OfxPointD way{point.x - from_.x, point.y - from_.y};
        const double part = square_ > 0.0 ? std::clamp(dot(way, along_) / square_, 0.0, 1.0) : 0.0;
        const OfxPointD off{way.x - part * along_.x, way.y - part * along_.y};
        return dot(off, off);
    }

private:
    static double dot(OfxPointD a, OfxPointD b) { return a.x * b.x + a.y * b.y; }

    OfxPointD from_, along_;
    double square_;
};

/// The pixels whose centres are less than the radius from the line.
OfxRectI boxOf(OfxPointD from, OfxPointD to, double radius)
{
    const auto first = [radius](double a, double b) {
        return static_cast<int>(std::floor(std::min(a, b) - radius));
    };
    const auto end = [radius](double a, double b) {
        return static_cast<int>(std::ceil(std::max(a, b) + radius));
    };
    return {first(from.x, to.x), first(from.y, to.y), end(from.x, to.x), end(from.y, to.y)};
}

}  // namespace

std::uint8_t Brush::strengthAt(double distance) const
{
    const double radius = size / 2.0;
    const double hard = radius * (1.0 - softness);
    if (distance >= radius) return 0;
    if (distance <= hard) return 255;
    const double part = (radius - distance) / (radius - hard);
    const double smooth = part * part * (3.0 - 2.0 * part);
    return static_cast<std::uint8_t>(std::lround(255.0 * smooth));
}

void drawStroke(MattePaint& paint, const Brush& brush, OfxPointD from, OfxPointD to, bool erases)
{
    const double radius = brush.size / 2.0;
    const Segment line(from, to);
    paint.change(boxOf(from, to, radius), [&](Picture& picture, const OfxRectI& box) {
        for (int y = box.y1; y < box.y2; ++y) {
            auto* pixel = picture.pixel<std::uint8_t>(box.x1, y);
            for (int x = box.x1; x < box.x2; ++x, ++pixel) {
                const double square = line.squaredDistance({x + 0.5, y + 0.5});
                if (square >= radius * radius) continue;
                const std::uint8_t strength = brush.strengthAt(std::sqrt(square));
                *pixel = erases ? std::min<std::uint8_t>(*pixel, 255 - strength)
                                : std::max(*pixel, strength);
            }
        }
    });
}

}  // namespace Tesseret::Viewer
