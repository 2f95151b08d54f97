#include "viewer/model/MatteShapes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "render/MatteGrow.h"

namespace Tesseret::Viewer {

using Render::Polarity;

namespace {

/// Larger than any picture, and small enough for sums of pixels.
constexpr double kFar = 1e6;

int toPixel(double place)
{
    return static_cast<int>(std::ceil(std::clamp(place, -kFar, kFar) - 0.5));
}

OfxRectI boxOf(std::span<const OfxPointD> corners)
{
    OfxRectD box{kFar, kFar, -kFar, -kFar};
    for (const OfxPointD& corner : corners) {
        box = {std::min(box.x1, corner.x), std::min(box.y1, corner.y), std::max(box.x2, corner.x),
               std::max(box.y2, corner.y)};
    }
    return {toPixel(box.x1), toPixel(box.y1), toPixel(box.x2), toPixel(box.y2)};
}

/// Where the outline crosses the height, from left to right.
void findCrossings(std::span<const OfxPointD> corners, double y, std::vector<double>& crossings)
{
    crossings.clear();
    OfxPointD a = corners.back();
    for (const OfxPointD& b : corners) {
        if ((a.y <= y) != (b.y <= y)) {
            // From the lower end, so that both polygons beside an edge get the same sum.
            const OfxPointD &low = a.y < b.y ? a : b, &high = a.y < b.y ? b : a;
            crossings.push_back(low.x + (y - low.y) / (high.y - low.y) * (high.x - low.x));
        }
        a = b;
    }
    std::ranges::sort(crossings);
}

/// The box of everything masked, wider by a margin and inside the picture.
OfxRectI maskedWithin(const MattePaint& paint, int margin)
{
    const OfxRectI box = paint.maskedBox();
    if (isEmpty(box)) return box;
    return intersection({box.x1 - margin, box.y1 - margin, box.x2 + margin, box.y2 + margin},
                        paint.bounds());
}

/// The unmasked pixels connected to a start.
class Flood {
public:
    explicit Flood(const Picture& picture)
        : picture_(picture),
          width_(picture.width()),
          seen_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(picture.height()))
    {}

    /// False once the edge of the picture is reached.
    bool run(OfxPointI start)
    {
        open_.push_back(start);
        while (!open_.empty()) {
            const OfxPointI at = open_.back();
            open_.pop_back();
            if (!picture_.contains(at.x, at.y)) return false;
            if (*picture_.pixel<std::uint8_t>(at.x, at.y) != 0) continue;
            if (seen(at)) continue;
            seen(at) = true;
            box_ = unionOf(box_, {at.x, at.y, at.x + 1, at.y + 1});
            for (const OfxPointI next : {OfxPointI{at.x - 1, at.y}, OfxPointI{at.x + 1, at.y},
                                         OfxPointI{at.x, at.y - 1}, OfxPointI{at.x, at.y + 1}}) {
                open_.push_back(next);
            }
        }
        return true;
    }
    bool holds(int x, int y) { return seen({x, y}); }
    const OfxRectI& box() const { return box_; }

private:
    std::vector<bool>::reference seen(OfxPointI at)
    {
        const OfxRectI bounds = picture_.bounds();
        return seen_[static_cast<std::size_t>(at.y - bounds.y1) * static_cast<std::size_t>(width_) +
                     static_cast<std::size_t>(at.x - bounds.x1)];
    }

    const Picture& picture_;
    int width_;
    std::vector<bool> seen_;
    std::vector<OfxPointI> open_;
    OfxRectI box_{0, 0, 0, 0};
};

/// Widens what is masked, or with black what is not.
void spread(MattePaint& paint, double radius, Polarity polarity)
{
    const int margin = static_cast<int>(radius) + 1;
    const OfxRectI box = maskedWithin(paint, margin);
    const Picture part = paint.picture().copied(box, {});
    paint.change(box, [&](Picture& picture, const OfxRectI& inside) {
        picture.paste(Render::grownMatte(part, radius, polarity, inside));
    });
}

}  // namespace

void fillPolygon(MattePaint& paint, std::span<const OfxPointD> corners, bool erases)
{
    if (corners.size() < 3) return;
    std::vector<double> crossings;
    paint.change(boxOf(corners), [&](Picture& picture, const OfxRectI& box) {
        for (int y = box.y1; y < box.y2; ++y) {
            findCrossings(corners, y + 0.5, crossings);
            for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
                const int x1 = std::max(toPixel(crossings[i]), box.x1);
                const int x2 = std::min(toPixel(crossings[i + 1]), box.x2);
                if (x1 >= x2) continue;
                std::fill_n(picture.pixel<std::uint8_t>(x1, y), x2 - x1,
                            std::uint8_t(erases ? 0 : 255));
            }
        }
    });
}

void fillRectangle(MattePaint& paint, OfxPointD a, OfxPointD b, bool erases)
{
    const std::array<OfxPointD, 4> corners{a, {b.x, a.y}, b, {a.x, b.y}};
    fillPolygon(paint, corners, erases);
}

bool fillEnclosed(MattePaint& paint, OfxPointD at)
{
    const OfxPointI start{static_cast<int>(std::floor(at.x)), static_cast<int>(std::floor(at.y))};
    Flood flood(paint.picture());
    if (!flood.run(start) || isEmpty(flood.box())) return false;
    paint.change(flood.box(), [&](Picture& picture, const OfxRectI& box) {
        for (int y = box.y1; y < box.y2; ++y) {
            for (int x = box.x1; x < box.x2; ++x) {
                if (flood.holds(x, y)) *picture.pixel<std::uint8_t>(x, y) = 255;
            }
        }
    });
    return true;
}

void growMatte(MattePaint& paint, double radius)
{
    spread(paint, radius, Polarity::White);
}

void shrinkMatte(MattePaint& paint, double radius)
{
    spread(paint, radius, Polarity::Black);
}

void clearMatte(MattePaint& paint)
{
    paint.change(paint.maskedBox(), [](Picture& picture, const OfxRectI& box) {
        for (int y = box.y1; y < box.y2; ++y) {
            std::fill_n(picture.pixel<std::uint8_t>(box.x1, y), box.x2 - box.x1, std::uint8_t{0});
        }
    });
}

void invertMatte(MattePaint& paint, const OfxRectI& window)
{
    paint.change(paint.bounds(), [&](Picture& picture, const OfxRectI& box) {
        for (int y = box.y1; y < box.y2; ++y) {
            for (int x = box.x1; x < box.x2; ++x) {
                auto& value = *picture.pixel<std::uint8_t>(x, y);
                const bool isInside =
                    x >= window.x1 && x < window.x2 && y >= window.y1 && y < window.y2;
                value = isInside ? static_cast<std::uint8_t>(255 - value) : std::uint8_t{0};
            }
        }
    });
}

}  // namespace Tesseret::Viewer
