#include "fill/Specks.h"

#include <algorithm>
#include <array>
#include <map>
#include <tuple>
#include <utility>

#include "fill/FirstGuess.h"
#include "fill/Places.h"
#include "quality/PixelSums.h"

namespace Tesseret::Fill {

namespace {

constexpr int kTile = 64;
constexpr std::size_t kTextures = 3;

OfxRectI unionOf(const OfxRectI& a, const OfxRectI& b)
{
    return {std::min(a.x1, b.x1), std::min(a.y1, b.y1), std::max(a.x2, b.x2), std::max(a.y2, b.y2)};
}

using Colour = std::array<double, 3>;

/// The mean colour of the known pixels of a box, of every fourth of them.
Colour colourOf(const Picture& source, const Picture& lost, const OfxRectI& box)
{
    constexpr int kEvery = 4;
    Colour sum{};
    double count = 0.0;
    for (int y = box.y1; y < box.y2; y += kEvery) {
        for (int x = box.x1; x < box.x2; x += kEvery) {
            if (*lost.pixel<std::uint8_t>(x, y) != 0) continue;
            for (std::size_t c = 0; c < sum.size(); ++c) sum[c] += source.channel(x, y, int(c));
            ++count;
        }
    }
    for (double& channel : sum) channel /= std::max(count, 1.0);
    return sum;
}

/// Of the known pixels close round a speck.
Colour rimColour(const Picture& source, const Picture& lost, const OfxRectI& speck)
{
    constexpr int kRim = 8;
    return colourOf(source, lost, intersection(grownBox(speck, kRim), lost.bounds()));
}

double apart(const Colour& a, const Colour& b)
{
    double sum = 0.0;
    for (std::size_t c = 0; c < a.size(); ++c) sum += (a[c] - b[c]) * (a[c] - b[c]);
    return sum;
}

/// Squares without lost pixels, or else with as few as can be; those of the colour round the specks
/// first, and of these the closest.
class CleanSquares {
public:
    CleanSquares(const Picture& source, const Picture& lost)
        : source_(source), lost_(lost), bounds_(lost.bounds()), sums_(lost)
    {}

    std::vector<OfxRectI> find(const OfxRectI& near) const
    {
        constexpr int kLeast = 40;
        std::vector<OfxRectI> found;
        for (const int side : {64, 48, kLeast}) {
            found = squares(near, side, Dirt::None);
            if (found.size() == kTextures) return found;
        }
        return found.empty() ? squares(near, kLeast, Dirt::Least) : found;
    }

private:
    enum class Dirt { None, Least };
    struct Square {
        OfxRectI box;
        int lost;
        double apart, distance;
    };

    std::vector<OfxRectI> squares(const OfxRectI& near, int side, Dirt dirt) const
    {
        constexpr int kReach = 72;
        const Colour wanted = rimColour(source_, lost_, near);
        const OfxRectI area = intersection(grownBox(near, kReach), bounds_);
        std::vector<Square> all;
        for (int y = area.y1; y + side <= area.y2; y += side / 8) {
            for (int x = area.x1; x + side <= area.x2; x += side / 8) {
                const OfxRectI box{x, y, x + side, y + side};
                const int count = sums_.sum(box.x1 - bounds_.x1, box.y1 - bounds_.y1,
                                            box.x2 - bounds_.x1, box.y2 - bounds_.y1);
                if (dirt == Dirt::None && count > 0) continue;
                const double dx = box.x1 + box.x2 - near.x1 - near.x2;
                const double dy = box.y1 + box.y2 - near.y1 - near.y2;
                all.push_back(
                    {box, count, apart(colourOf(source_, lost_, box), wanted), dx * dx + dy * dy});
            }
        }
        std::ranges::stable_sort(all, {}, [](const Square& square) {
            return std::tuple(square.lost, square.apart, square.distance);
        });
        std::vector<OfxRectI> chosen;
        for (const Square& square : all) {
            if (chosen.size() == kTextures || square.lost > all.front().lost) break;
            const bool isApart = std::ranges::all_of(chosen, [&](const OfxRectI& other) {
                const OfxRectI common = intersection(other, square.box);
                return widthOf(common) <= side / 2 || heightOf(common) <= side / 2;
            });
            if (isApart) chosen.push_back(square.box);
        }
        return chosen;
    }

    const Picture& source_;
    const Picture& lost_;
    OfxRectI bounds_;
    Quality::PixelSums sums_;
};

/// Specks on one ground.
struct ColouredGroup {
    Colour colour;
    SpeckGroup group;
};

double fullScale(const Picture& picture)
{
    if (picture.depth() == Depth::Byte) return 255.0;
    return picture.depth() == Depth::Short ? 65535.0 : 1.0;
}

void addTo(std::vector<ColouredGroup>& groups, const Speck& speck, const Colour& colour,
           double scale)
{
    constexpr double kSame = 0.06;  // of white
    const auto found = std::ranges::find_if(groups, [&](const ColouredGroup& one) {
        return apart(one.colour, colour) < kSame * kSame * scale * scale;
    });
    if (found == groups.end()) {
        groups.push_back({colour, {{speck.area}, speck.box, {}}});
        return;
    }
    found->group.box = unionOf(found->group.box, speck.box);
    found->group.areas.push_back(speck.area);
}

}  // namespace

std::vector<SpeckGroup> groupSpecks(const std::vector<Speck>& specks, const Picture& source,
                                    const Picture& lost)
{
    std::map<std::pair<int, int>, std::vector<ColouredGroup>> tiles;
    for (const Speck& speck : specks) {
        const auto tile = std::pair((speck.box.y1 - lost.bounds().y1) / kTile,
                                    (speck.box.x1 - lost.bounds().x1) / kTile);
        addTo(tiles[tile], speck, rimColour(source, lost, speck.box), fullScale(source));
    }
    const CleanSquares clean(source, lost);
    std::vector<SpeckGroup> groups;
    for (auto& [tile, coloured] : tiles) {
        for (ColouredGroup& one : coloured) groups.push_back(std::move(one.group));
    }
    for (SpeckGroup& group : groups) {
        const Edge edge = edgeFor(0.0);
        Choice& choice = group.choice;
        choice.pathWidth = edge.pathWidth;
        choice.edgeBlend = edge.edgeBlend;
        choice.grow = edge.grow;
        choice.blockSize = 30;
        choice.overlap = 15;
        choice.numSamples = 60;
        choice.parts = {{Place{"clean squares close by", clean.find(group.box), 0}, std::nullopt}};
    }
    return groups;
}

}  // namespace Tesseret::Fill
