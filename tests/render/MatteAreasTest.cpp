#include <limits>
#include <random>
#include <set>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "render/MatteAreas.h"

namespace Tesseret::Render {
namespace {

using testing::ElementsAre;

/// A matte from its rows, the upper one first: '#' is full, '+' just masked, '-' just not, ' ' is
/// 0, 'n' NaN. Its lower left corner is at (x, y).
Picture matteOf(const std::vector<std::string>& rows, Depth depth = Depth::Byte,
                Polarity polarity = Polarity::White, int x = 0, int y = 0)
{
    const int width = static_cast<int>(rows.front().size());
    const int height = static_cast<int>(rows.size());
    Picture matte({x, y, x + width, y + height}, depth, Components::Alpha);
    const double full = depth == Depth::Byte ? 255 : depth == Depth::Short ? 65535 : 1;
    const auto strength = [&](char mark) {
        switch (mark) {
            case '#':
                return full;
            case '+':  // a little more than 1 of 255
                return depth == Depth::Float ? 0.004 : depth == Depth::Short ? 258 : 1;
            case '-':
                return depth == Depth::Float ? 0.0039 : depth == Depth::Short ? 256 : 0;
            case 'n':
                return depth == Depth::Float ? std::numeric_limits<double>::quiet_NaN() : 0;
            default:
                return 0.0;
        }
    };
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            const double value =
                strength(rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)]);
            matte.setChannel(x + column, y + height - 1 - row, 0,
                             polarity == Polarity::White ? value : full - value);
        }
    }
    return matte;
}

std::shared_ptr<const Picture> shared(Picture picture)
{
    return std::make_shared<const Picture>(std::move(picture));
}

/// '#' where the plug-in fills, the upper row first.
std::vector<std::string> filled(const Picture& matte, Polarity polarity)
{
    std::vector<std::string> rows;
    const OfxRectI bounds = matte.bounds();
    atDepth(matte.depth(), [&]<typename Channel>(Channel) {
        for (int y = bounds.y2 - 1; y >= bounds.y1; --y) {
            std::string& row = rows.emplace_back();
            for (int x = bounds.x1; x < bounds.x2; ++x) {
                row += isMasked(masking(*matte.pixel<Channel>(x, y), polarity)) ? '#' : ' ';
            }
        }
    });
    return rows;
}

std::vector<int> edges(const OfxRectI& box)
{
    return {box.x1, box.y1, box.x2, box.y2};
}

class MatteAreasTest : public testing::TestWithParam<std::pair<Depth, Polarity>> {};

TEST_P(MatteAreasTest, ComeInTheOrderOfTheScanWithTheirHolesFilled)
{
    const auto [depth, polarity] = GetParam();
    const MatteAreas areas(shared(matteOf({"### +   ",  //
                                           "# # -#  ",  //
                                           "### n   ",  //
                                           "  -#  ##",  //
                                           "#    #  "},
                                          depth, polarity, 10, 20)),
                           polarity);
    ASSERT_EQ(areas.count(), 7u);
    EXPECT_THAT(edges(areas.box(0)), ElementsAre(10, 20, 11, 21));
    EXPECT_THAT(edges(areas.box(1)), ElementsAre(15, 20, 16, 21));
    EXPECT_THAT(edges(areas.box(2)), ElementsAre(13, 21, 14, 22));  // touches only at corners
    EXPECT_THAT(edges(areas.box(3)), ElementsAre(16, 21, 18, 22));
    EXPECT_THAT(edges(areas.box(4)), ElementsAre(10, 22, 13, 25));
    const Picture ring = areas.alone(4, areas.box(4));
    EXPECT_THAT(filled(ring, polarity), ElementsAre("###", "###", "###"));
    EXPECT_THAT(edges(ring.regionOfDefinition()), ElementsAre(10, 22, 13, 25));
    EXPECT_THAT(filled(areas.alone(3, areas.matte().bounds()), polarity),
                ElementsAre("        ", "        ", "        ", "      ##", "        "));
    // Soft values stay as they are.
    EXPECT_EQ(areas.alone(6, areas.box(6)).channel(14, 24, 0), areas.matte().channel(14, 24, 0));

    EXPECT_TRUE(areas.reachInto({0, 0, 11, 21}, 1));
    EXPECT_FALSE(areas.reachInto({11, 20, 15, 21}, 7));
    EXPECT_FALSE(areas.reachInto({16, 21, 18, 22}, 3));
    EXPECT_TRUE(areas.reachInto({11, 23, 12, 24}, 7)) << "a hole is part of its area";
    EXPECT_FALSE(areas.reachInto({0, 0, 10, 99}, 7));
}

TEST_P(MatteAreasTest, CoverAllOrNothing)
{
    const auto [depth, polarity] = GetParam();
    const MatteAreas none(shared(matteOf({"  -", "n  "}, depth, polarity)), polarity);
    EXPECT_EQ(none.count(), 0u);
    const MatteAreas all(shared(matteOf({"##", "##"}, depth, polarity)), polarity);
    ASSERT_EQ(all.count(), 1u);
    EXPECT_THAT(edges(all.box(0)), ElementsAre(0, 0, 2, 2));
}

INSTANTIATE_TEST_SUITE_P(Depths, MatteAreasTest,
                         testing::Values(std::pair{Depth::Byte, Polarity::White},
                                         std::pair{Depth::Byte, Polarity::Black},
                                         std::pair{Depth::Short, Polarity::White},
                                         std::pair{Depth::Short, Polarity::Black},
                                         std::pair{Depth::Float, Polarity::White}));

/// Spreads the smallest label to neighbours until nothing changes; 0 is where none may go.
std::vector<int> spreadLabels(std::vector<int> labels, int width)
{
    const int size = static_cast<int>(labels.size());
    const auto at = [&](int cell) -> int& { return labels[static_cast<std::size_t>(cell)]; };
    for (bool changes = true; changes;) {
        changes = false;
        for (int cell = 0; cell < size; ++cell) {
            for (const int step : {-width, -1, 1, width}) {
                const int next = cell + step;
                const bool isBeside = next / width == cell / width || step * step != 1;
                if (next < 0 || next >= size || !isBeside || at(cell) == 0) continue;
                if (at(next) == 0 || at(next) >= at(cell)) continue;
                at(cell) = at(next);
                changes = true;
            }
        }
    }
    return labels;
}

TEST(MatteAreasOfNoiseTest, AreThoseOfAPlainSearch)
{
    std::mt19937 random(7);
    for (int trial = 0; trial < 200; ++trial) {
        const int width = 3 + trial % 11, height = 3 + trial % 7;
        Picture matte({0, 0, width, height}, Depth::Byte, Components::Alpha);
        // With a margin, so that the outside is one: cell 0 belongs to it.
        const int wide = width + 2, cells = wide * (height + 2);
        std::vector<int> outside(static_cast<std::size_t>(cells));
        for (int cell = 0; cell < cells; ++cell) {
            const int x = cell % wide - 1, y = cell / wide - 1;
            const bool isMasked = matte.contains(x, y) && random() % 100 < 55;
            if (isMasked) matte.setChannel(x, y, 0, 255);
            outside[static_cast<std::size_t>(cell)] = isMasked ? 0 : cell + 1;
        }
        outside = spreadLabels(outside, wide);
        std::vector<int> inside(outside.size());
        for (std::size_t cell = 0; cell < inside.size(); ++cell) {
            inside[cell] = outside[cell] == 1 ? 0 : static_cast<int>(cell) + 1;
        }
        inside = spreadLabels(inside, wide);
        std::set<int> labels(inside.begin(), inside.end());
        labels.erase(0);

        const MatteAreas areas(shared(matte.copied()), Polarity::White);
        ASSERT_EQ(areas.count(), labels.size()) << trial;
        std::size_t area = 0;
        for (const int label : labels) {
            const Picture alone = areas.alone(area, matte.bounds());
            const OfxRectI box = areas.box(area++);
            for (int y = 0; y < height; ++y) {
                for (int x = 0; x < width; ++x) {
                    const int cell = (y + 1) * wide + x + 1;
                    const bool belongs = inside[static_cast<std::size_t>(cell)] == label;
                    ASSERT_EQ(alone.channel(x, y, 0) == 255, belongs) << trial;
                    const bool isBoxed = x >= box.x1 && x < box.x2 && y >= box.y1 && y < box.y2;
                    ASSERT_TRUE(isBoxed || !belongs) << trial;
                }
            }
        }
    }
}

}  // namespace
}  // namespace Tesseret::Render
