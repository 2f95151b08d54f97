#include "fill/Specks.h"

#include <algorithm>
#include <map>
#include <utility>

#include "fill/FirstGuess.h"
#include "fill/Places.h"
#include "quality/PixelSums.h"

namespace Tesseret::Fill {

namespace {

constexpr int kTile = 256;
constexpr std::size_t kTextures = 3;

OfxRectI unionOf(const OfxRectI& a, const OfxRectI& b)
{
    return {std::min(a.x1, b.x1), std::min(a.y1, b.y1), std::max(a.x2, b.x2), std::max(a.y2, b.y2)};
}

/// Squares without lost pixels, or else with as few as can be, the closest to the middle of `near`
/// first.
class CleanSquares {
public:
    explicit CleanSquares(const Picture& lost) : bounds_(lost.bounds()), sums_(lost) {}

    std::vector<OfxRectI> find(const OfxRectI& near) const
    {
        std::vector<OfxRectI> found;
        for (const int side : {96, 64, 48}) {
            found = squares(near, side);
            if (found.size() == kTextures) break;
        }
        return found;
    }

private:
    struct Square {
        OfxRectI box;
        int lost;
        double distance;
    };

    std::vector<OfxRectI> squares(const OfxRectI& near, int side) const
    {
        constexpr int kReach = 192;
        const OfxRectI area = intersection(grownBox(near, kReach), bounds_);
        std::vector<Square> all;
        for (int y = area.y1; y + side <= area.y2; y += side / 4) {
            for (int x = area.x1; x + side <= area.x2; x += side / 4) {
                const OfxRectI box{x, y, x + side, y + side};
                const int count = sums_.sum(box.x1 - bounds_.x1, box.y1 - bounds_.y1,
                                            box.x2 - bounds_.x1, box.y2 - bounds_.y1);
                const double dx = box.x1 + box.x2 - near.x1 - near.x2;
                const double dy = box.y1 + box.y2 - near.y1 - near.y2;
                all.push_back({box, count, dx * dx + dy * dy});
            }
        }
        std::ranges::stable_sort(
            all, {}, [](const Square& square) { return std::pair(square.lost, square.distance); });
        std::vector<OfxRectI> chosen;
        for (const Square& square : all) {
            if (chosen.size() == kTextures || square.lost > all.front().lost) break;
            const bool isApart = std::ranges::all_of(chosen, [&](const OfxRectI& other) {
                return isEmpty(intersection(other, square.box));
            });
            if (isApart) chosen.push_back(square.box);
        }
        return chosen;
    }

    OfxRectI bounds_;
    Quality::PixelSums sums_;
};

}  // namespace

std::vector<SpeckGroup> groupSpecks(const std::vector<Speck>& specks, const Picture& lost)
{
    std::map<std::pair<int, int>, SpeckGroup> tiles;
    for (const Speck& speck : specks) {
        const auto tile = std::pair((speck.box.y1 - lost.bounds().y1) / kTile,
                                    (speck.box.x1 - lost.bounds().x1) / kTile);
        SpeckGroup& group = tiles[tile];
        group.box = group.areas.empty() ? speck.box : unionOf(group.box, speck.box);
        group.areas.push_back(speck.area);
    }
    const CleanSquares clean(lost);
    std::vector<SpeckGroup> groups;
    for (auto& [tile, group] : tiles) {
        const Edge edge = edgeFor(kSpeckSide / 2.0);
        Choice& choice = group.choice;
        choice.pathWidth = edge.pathWidth;
        choice.edgeBlend = edge.edgeBlend;
        choice.grow = edge.grow;
        choice.blockSize = 30;
        choice.overlap = 15;
        choice.numSamples = 60;
        choice.parts = {{Place{"clean squares close by", clean.find(group.box), 0}, std::nullopt}};
        groups.push_back(std::move(group));
    }
    return groups;
}

}  // namespace Tesseret::Fill
