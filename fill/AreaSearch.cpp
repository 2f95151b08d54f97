#include "fill/AreaSearch.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "effect/ParameterNames.h"

namespace Tesseret::Fill {

namespace {

int roomIn(const Choice& choice)
{
    int room = choice.parts.front().place.room;
    for (const Part& part : choice.parts) room = std::min(room, part.place.room);
    return room;
}

/// Nothing limits the blocks of a texture that the user gave.
constexpr int kAnyRoom = 1 << 20;

bool isSameButSeed(Choice a, const Choice& b)
{
    a.seed = b.seed;
    const auto isSamePart = [](const Part& one, const Part& other) {
        return one.place.name == other.place.name && one.side.has_value() == other.side.has_value();
    };
    return std::ranges::equal(a.parts, b.parts, isSamePart) && a.blockSize == b.blockSize &&
           a.overlap == b.overlap && a.blendSize == b.blendSize && a.numSamples == b.numSamples &&
           a.luminanceMatch == b.luminanceMatch && a.grow == b.grow;
}

Place joined(const Place& one, const Place& other)
{
    Place both{one.name + " and " + other.name, one.crops, std::min(one.room, other.room)};
    both.crops.insert(both.crops.end(), other.crops.begin(), other.crops.end());
    return both;
}

Choice withEdge(Choice choice, const Edge& edge)
{
    choice.pathWidth = edge.pathWidth;
    choice.edgeBlend = edge.edgeBlend;
    choice.grow = edge.grow;
    return choice;
}

/// With an overlap of this part of the block, or of the fill's height where blocks keep its rows,
/// and half of it blended if anything is.
Choice withOverlap(Choice choice, int part)
{
    const Place& place = choice.parts.front().place;
    choice.overlap = (place.isLevel ? place.room : choice.blockSize) / part;
    if (place.isLevel) choice.blockSize = place.room + choice.overlap;
    if (choice.blendSize > 0) choice.blendSize = choice.overlap / 2;
    return choice;
}

/// The side of the line that a ground lies on.
Render::LineSide sideOf(const Quality::TwoGrounds& grounds, int ground, int top)
{
    const double x = grounds.normalX * grounds.offset;
    const double y = grounds.normalY * grounds.offset;
    const double sign = ground == 1 ? 1.0 : -1.0;
    const double angle =
        std::atan2(-sign * grounds.normalY, sign * grounds.normalX) * 180.0 / std::numbers::pi;
    const auto rounded = [](double value) { return std::round(value * 10.0) / 10.0; };
    return {rounded(x), rounded(top - y), rounded(angle)};
}

}  // namespace

AreaSearch::AreaSearch(const Surroundings& area, const Edge& edge,
                       const Quality::TextureScale& texture, const FixedValues& fixed, int top,
                       Trials& trials)
    : area_(area),
      edge_(edge),
      tighter_(tighterEdges(edge, texture)),
      texture_(texture),
      fixed_(fixed),
      top_(top),
      trials_(trials),
      guess_(firstGuess(edge, texture)),
      blocks_(blockSizes(texture, std::max(widthOf(area.box), heightOf(area.box))))
{}

void AreaSearch::run()
{
    const std::size_t all = trials_.left();
    std::vector<Choice> first = withPlaces();
    if (first.empty()) return;
    tryAtMost(std::max<std::size_t>(3, all * 3 / 10), std::move(first));
    tryAtMost(all / 6, withTwoGrounds());
    std::vector<Choice> edges;
    for (const Choice& choice : tops(3)) {
        for (Choice& other : withEdges(choice)) edges.push_back(std::move(other));
    }
    tryAtMost(all / 10, std::move(edges));
    std::vector<Choice> blocks;
    for (const Choice& choice : tops(3)) {
        for (Choice& other : withBlocks(choice)) blocks.push_back(std::move(other));
    }
    tryAtMost(std::max<std::size_t>(2, all / 5), std::move(blocks));
    std::vector<Choice> variants;
    for (const Choice& choice : tops(2)) {
        for (Choice& other : withVariants(choice)) variants.push_back(std::move(other));
    }
    tryAtMost(all / 5, std::move(variants));
    trySeeds();
}

void AreaSearch::tryAtMost(std::size_t count, std::vector<Choice> choices)
{
    if (trials_.hasEnded()) return;
    if (choices.size() > count)
        choices.erase(choices.begin() + std::ptrdiff_t(count), choices.end());
    trials_.run(std::move(choices));
}

/// The guess in a place, with the likeliest block that fits there.
Choice AreaSearch::in(const Place& place) const
{
    Choice choice = guess_;
    choice.parts = {{place, std::nullopt}};
    return withBlock(choice, std::min(blocks_.front(), std::max(30, place.room)));
}

Choice AreaSearch::level(const Place& place, const Edge& edge) const
{
    Choice choice = withEdge(guess_, edge);
    choice.parts = {{place, std::nullopt}};
    return withOverlap(choice, 2);
}

/// The best choices that differ in more than the seed.
std::vector<Choice> AreaSearch::tops(std::size_t count) const
{
    std::vector<Choice> best;
    for (const Scored& scored : trials_.ranked()) {
        if (best.size() == count) break;
        const bool isNew = std::ranges::none_of(
            best, [&](const Choice& other) { return isSameButSeed(other, scored.choice); });
        if (isNew) best.push_back(scored.choice);
    }
    return best;
}

std::vector<Choice> AreaSearch::withPlaces() const
{
    if (fixed_.fixesPlace()) return {in({"as given", {}, kAnyRoom})};
    std::vector<Choice> choices;
    for (const Place& place : placesFor(area_, texture_)) choices.push_back(in(place));
    if (fixesEdge()) return choices;
    const Edge edge = tighter_.empty() ? edge_ : tighter_.front();
    std::vector<Choice> levels;
    for (const Place& place : levelPlaces(area_, edge, texture_)) {
        levels.push_back(level(place, edge));
    }
    // Few trials have to include one of them.
    constexpr std::size_t kSecond = 2;
    choices.insert(choices.begin() + std::ptrdiff_t(std::min(kSecond, choices.size())),
                   levels.begin(), levels.end());
    return choices;
}

bool AreaSearch::fixesEdge() const
{
    return fixed_.has(Names::kPathWidth) || fixed_.has(Names::kEdgeBlend) || fixed_.fixesGrowth();
}

/// The choice with less of the source cut off.
std::vector<Choice> AreaSearch::withEdges(const Choice& choice) const
{
    std::vector<Choice> choices;
    if (fixesEdge() || choice.parts.front().place.isLevel) return choices;
    for (const Edge& edge : tighter_) choices.push_back(withEdge(choice, edge));
    return choices;
}

/// One ground over the whole area, then the other over its side of the line, so that the cut
/// between them is fitted like any other; in both orders. Or both as textures of one fill.
std::vector<Choice> AreaSearch::withTwoGrounds() const
{
    constexpr std::size_t kPlaces = 2;
    const auto& grounds = texture_.grounds();
    if (!grounds || fixed_.fixesPlace() || fixed_.fixesSide()) return {};
    const std::vector<Place> places[] = {placesOnGround(area_, texture_, 0, kPlaces),
                                         placesOnGround(area_, texture_, 1, kPlaces)};
    std::vector<Choice> choices;
    for (std::size_t rank = 0; rank < kPlaces; ++rank) {
        for (const int second : {1, 0}) {
            const auto& over = places[second];
            const auto& under = places[1 - second];
            if (rank >= over.size() || rank >= under.size()) continue;
            Choice choice = in(under[rank]);
            choice.parts.push_back({over[rank], sideOf(*grounds, second, top_)});
            choices.push_back(
                withBlock(choice, std::min(choice.blockSize, std::max(30, roomIn(choice)))));
        }
    }
    if (!places[0].empty() && !places[1].empty()) {
        choices.push_back(in(joined(places[0].front(), places[1].front())));
    }
    return choices;
}

std::vector<Choice> AreaSearch::withBlocks(const Choice& choice) const
{
    std::vector<Choice> choices;
    if (choice.parts.front().place.isLevel) return choices;
    for (const int block : blocks_) {
        if (block <= roomIn(choice)) choices.push_back(withBlock(choice, block));
    }
    return choices;
}

/// More samples, the other ways of joining, and matched brightness.
std::vector<Choice> AreaSearch::withVariants(const Choice& choice) const
{
    std::vector<Choice> choices;
    const auto add = [&](auto change) {
        Choice other = choice;
        change(other);
        choices.push_back(std::move(other));
    };
    add([](Choice& c) { c.numSamples = 400; });
    add([](Choice& c) { c.blendSize = c.blendSize > 0 ? 0 : c.blockSize / 4; });
    add([](Choice& c) { c.luminanceMatch = true; });
    choices.push_back(withOverlap(choice, 4));
    add([](Choice& c) { c.numSamples = 1500; });
    add([](Choice& c) { c.numSamples = 400, c.luminanceMatch = true; });
    return choices;
}

void AreaSearch::trySeeds()
{
    constexpr std::size_t kSettings = 3;
    while (trials_.left() > 0 && !trials_.hasEnded()) {
        const std::size_t before = trials_.left();
        std::vector<Choice> choices;
        for (Choice choice : tops(kSettings)) {
            for (int more = 0; more < 2; ++more) {
                choice.seed = ++lastSeed_;
                choices.push_back(choice);
            }
        }
        trials_.run(std::move(choices));
        if (trials_.left() == before) return;
    }
}

}  // namespace Tesseret::Fill
