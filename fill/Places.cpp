#include "fill/Places.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace Tesseret::Fill {

namespace {

/// The smallest block of the plug-in is 30 pixels, and it needs some choice.
constexpr int kLeastSide = 48;
/// Of the surroundings' thickness that a block may have, so that enough of them fit.
constexpr double kRoomShare = 0.8;

/// Sizes of boxes elsewhere, for the area's.
constexpr double kShares[] = {1.0, 0.5};

struct Candidate {
    Place place;
    double likeness = 0.0;
};

OfxRectI boxAt(double x, double y, double width, double height)
{
    const int x1 = static_cast<int>(std::lround(x));
    const int y1 = static_cast<int>(std::lround(y));
    return {x1, y1, x1 + static_cast<int>(std::lround(width)),
            y1 + static_cast<int>(std::lround(height))};
}

bool isLargeEnough(const OfxRectI& box)
{
    return widthOf(box) >= kLeastSide && heightOf(box) >= kLeastSide;
}

int roomOf(const OfxRectI& box)
{
    return static_cast<int>(kRoomShare * std::min(widthOf(box), heightOf(box)));
}

/// The source around the area, without it.
std::optional<Place> around(const Surroundings& area, double share, const char* name)
{
    const int side = std::max(widthOf(area.box), heightOf(area.box));
    const int margin = std::max(kLeastSide, static_cast<int>(share * side));
    const OfxRectI box =
        clearPart(intersection(grownBox(area.box, margin), area.source), area.taboo);
    const int room = std::max(
        {area.box.x1 - box.x1, box.x2 - area.box.x2, area.box.y1 - box.y1, box.y2 - area.box.y2});
    if (!isLargeEnough(box) || room < kLeastSide) return std::nullopt;
    return Place{name, {box}, static_cast<int>(kRoomShare * room)};
}

std::optional<Place> boxPlace(const Surroundings& area, const OfxRectI& box, std::string name)
{
    std::vector<OfxRectI> taboo = area.taboo;
    taboo.push_back(area.box);
    const OfxRectI clear = clearPart(intersection(box, area.source), taboo);
    if (!isLargeEnough(clear)) return std::nullopt;
    return Place{std::move(name), {clear}, roomOf(clear)};
}

/// The boxes beside the area: as long as its side with some margin, and nearly as deep as it is.
std::vector<Place> beside(const Surroundings& area)
{
    constexpr double kDepth = 0.8;
    constexpr double kMore = 0.25;
    const OfxRectI& b = area.box;
    const double width = widthOf(b);
    const double height = heightOf(b);
    const double depth = std::max(96.0, kDepth * std::max(width, height));
    const double moreX = std::max(kMore * width, (kLeastSide - width) / 2);
    const double moreY = std::max(kMore * height, (kLeastSide - height) / 2);
    const struct {
        const char* name;
        OfxRectI box;
    } sides[] = {
        {"left", boxAt(b.x1 - depth, b.y1 - moreY, depth, height + 2 * moreY)},
        {"right", boxAt(b.x2, b.y1 - moreY, depth, height + 2 * moreY)},
        {"above", boxAt(b.x1 - moreX, b.y2, width + 2 * moreX, depth)},
        {"below", boxAt(b.x1 - moreX, b.y1 - depth, width + 2 * moreX, depth)},
    };
    std::vector<Place> places;
    for (const auto& side : sides) {
        if (auto place = boxPlace(area, side.box, side.name)) places.push_back(std::move(*place));
    }
    return places;
}

/// Boxes all over the window, as large as the area times this.
std::vector<Place> elsewhere(const Surroundings& area, double share)
{
    constexpr double kLeast = 56.0;
    constexpr double kStep = 0.5;
    const double size = std::max(kLeast, share * std::max(widthOf(area.box), heightOf(area.box)));
    const OfxRectI& window = area.window;
    std::vector<Place> places;
    for (double y = window.y1; y + size <= window.y2; y += kStep * size) {
        for (double x = window.x1; x + size <= window.x2; x += kStep * size) {
            const OfxRectI box = boxAt(x, y, size, size);
            if (!isEmpty(intersection(box, area.box))) continue;
            if (auto place = boxPlace(area, box, "elsewhere")) places.push_back(std::move(*place));
        }
    }
    return places;
}

bool overlapMostly(const OfxRectI& a, const OfxRectI& b)
{
    const OfxRectI common = intersection(a, b);
    const auto size = [](const OfxRectI& box) { return double(widthOf(box)) * heightOf(box); };
    return size(common) > 0.6 * std::min(size(a), size(b));
}

/// The most alike first; of places that overlap mostly only the best.
std::vector<Place> best(std::vector<Candidate> candidates, std::size_t count, double least)
{
    std::ranges::stable_sort(candidates, std::greater<>(), &Candidate::likeness);
    std::vector<Place> places;
    for (Candidate& candidate : candidates) {
        if (places.size() == count || candidate.likeness < least) break;
        const OfxRectI& box = candidate.place.crops.front();
        const bool isNew = std::ranges::none_of(
            places, [&](const Place& place) { return overlapMostly(place.crops.front(), box); });
        if (isNew) places.push_back(std::move(candidate.place));
    }
    return places;
}

}  // namespace

int widthOf(const OfxRectI& box)
{
    return box.x2 - box.x1;
}

int heightOf(const OfxRectI& box)
{
    return box.y2 - box.y1;
}

OfxRectI grownBox(const OfxRectI& box, int by)
{
    return {box.x1 - by, box.y1 - by, box.x2 + by, box.y2 + by};
}

OfxRectI clearPart(OfxRectI box, const std::vector<OfxRectI>& taboo)
{
    for (const OfxRectI& lost : taboo) {
        if (isEmpty(intersection(box, lost))) continue;
        const OfxRectI parts[] = {{box.x1, box.y1, std::min(box.x2, lost.x1), box.y2},
                                  {std::max(box.x1, lost.x2), box.y1, box.x2, box.y2},
                                  {box.x1, box.y1, box.x2, std::min(box.y2, lost.y1)},
                                  {box.x1, std::max(box.y1, lost.y2), box.x2, box.y2}};
        const auto size = [](const OfxRectI& part) {
            return isEmpty(part) ? 0.0 : double(widthOf(part)) * heightOf(part);
        };
        box = *std::ranges::max_element(parts, {}, size);
        if (isEmpty(box)) return {0, 0, 0, 0};
    }
    return box;
}

std::vector<Place> placesFor(const Surroundings& area, const Quality::TextureScale& texture)
{
    constexpr std::size_t kElsewhere = 4;
    constexpr double kAlike = 0.3;
    std::vector<Place> places;
    if (auto place = around(area, 0.7, "surroundings")) places.push_back(std::move(*place));
    std::vector<Candidate> sides;
    for (Place& place : beside(area)) {
        const double likeness = texture.likeness(place.crops.front());
        sides.push_back({std::move(place), likeness});
    }
    std::ranges::stable_sort(sides, std::greater<>(), &Candidate::likeness);
    for (Candidate& side : sides) places.push_back(std::move(side.place));
    if (auto place = around(area, 1.5, "wide surroundings")) places.push_back(std::move(*place));
    std::vector<Candidate> others;
    for (const double share : kShares) {
        for (Place& place : elsewhere(area, share)) {
            const double likeness = texture.likeness(place.crops.front());
            others.push_back({std::move(place), likeness});
        }
    }
    for (Place& place : best(std::move(others), kElsewhere, kAlike)) {
        places.push_back(std::move(place));
    }
    return places;
}

std::vector<Place> levelPlaces(const Surroundings& area, const Edge& edge,
                               const Quality::TextureScale& texture)
{
    constexpr int kMostRows = 400;
    constexpr double kLeastWidth = 1.7;  // in heights: a block
    constexpr double kWidth = 2.2;
    // The plug-in fills so much more than the matte on each side.
    constexpr double kMargin = 5.0;
    const OfxRectI matte = grownBox(area.matte, static_cast<int>(edge.grow));
    const OfxRectI rows =
        grownBox(matte, static_cast<int>(std::ceil(kMargin * (edge.pathWidth + edge.edgeBlend))));
    const int height = heightOf(rows);
    if (height > kMostRows) return {};
    const double width = kWidth * height;
    std::vector<Candidate> candidates;
    for (const bool isLeft : {true, false}) {
        const OfxRectI box = boxAt(isLeft ? matte.x1 - width : matte.x2, rows.y1, width, height);
        std::vector<OfxRectI> taboo = area.taboo;
        taboo.push_back(matte);
        const OfxRectI clear = clearPart(intersection(box, area.source), taboo);
        if (heightOf(clear) != height || widthOf(clear) < kLeastWidth * height) continue;
        candidates.push_back({{isLeft ? "left, level" : "right, level", {clear}, height, true},
                              texture.likeness(clear)});
    }
    std::ranges::stable_sort(candidates, std::greater<>(), &Candidate::likeness);
    std::vector<Place> places;
    for (Candidate& candidate : candidates) places.push_back(std::move(candidate.place));
    return places;
}

std::vector<Place> placesOnGround(const Surroundings& area, const Quality::TextureScale& texture,
                                  int ground, std::size_t count)
{
    constexpr double kAlike = 0.3;
    std::vector<Candidate> candidates;
    const auto add = [&](Place place) {
        const double likeness = texture.likeness(place.crops.front(), ground);
        candidates.push_back({std::move(place), likeness});
    };
    for (Place& place : beside(area)) add(std::move(place));
    for (const double share : kShares) {
        for (Place& place : elsewhere(area, share)) add(std::move(place));
    }
    return best(std::move(candidates), count, kAlike);
}

}  // namespace Tesseret::Fill
