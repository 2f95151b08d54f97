#include <limits>
#include <random>
#include <set>
#include <string_view>
#include <utility>

#include <gmock/gmock.h>

#include "engine/mask/FloodFill.h"
#include "tests/fixtures/FakeServices.h"
#include "tests/fixtures/MapBuilder.h"

namespace Orvane::Engine {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using Testing::FakeServices;
using Testing::TestMap;

using Point = std::pair<int, int>;

/// The pixels of a region that read `target` and are connected to (x, y), found one by one.
template <typename Pixel>
std::set<Point> connected(const Map<Pixel>& read, const Region& region, Point seed, Pixel target)
{
    std::set<Point> found;
    std::vector<Point> open{seed};
    while (!open.empty()) {
        const auto [x, y] = open.back();
        open.pop_back();
        if (x < region.x0 || x >= region.x1 || y < region.y0 || y >= region.y1) continue;
        if (read.read(x, y) != target || !found.insert({x, y}).second) continue;
        open.insert(open.end(), {{x - 1, y}, {x + 1, y}, {x, y - 1}, {x, y + 1}});
    }
    return found;
}

/// A map drawn with one character for each pixel: '#' is 1, anything else 0.
template <typename Pixel>
TestMap<Pixel> drawn(int width, std::string_view pixels)
{
    TestMap<Pixel> map(width, static_cast<int>(pixels.size()) / width);
    for (std::size_t i = 0; i < pixels.size(); ++i) map.pixels()[i] = pixels[i] == '#' ? 1 : 0;
    return map;
}

template <typename Pixel>
class FloodFillTest : public ::testing::Test {};
using Kinds = ::testing::Types<Pixel32f, Pixel32i>;
TYPED_TEST_SUITE(FloodFillTest, Kinds);

TYPED_TEST(FloodFillTest, AgreesWithAPlainFillOnRandomMaps)
{
    FakeServices services(3);
    std::mt19937 random(11);
    const auto below = [&random](int n) {
        return static_cast<int>(random() % static_cast<unsigned>(n));
    };
    FloodFill<TypeParam> fill(TypeParam{7});
    fill.setClearValue(TypeParam{3});
    for (int round = 0; round < 400; ++round) {
        TestMap<TypeParam> read(1 + below(24), 1 + below(18), below(9) - 4, below(9) - 4);
        for (TypeParam& pixel : read.pixels())
            pixel = static_cast<TypeParam>(below(10) < 6 ? 1 : 2);
        read->setFillValue(static_cast<TypeParam>(below(3)));
        if (round % 3 == 0) read->setEdgeMode(EdgeMode::EdgeWrap, EdgeMode::EdgeMirror);
        TestMap<TypeParam> written(1 + below(30), 1 + below(22), below(9) - 4, below(9) - 4);
        for (TypeParam& pixel : written.pixels()) pixel = 5;

        const bool keep = round / 4 % 2 == 0;
        const auto paint = static_cast<TypeParam>(round % 5 == 0 ? 1 : 7);  // 1 is the target too
        const int x0 = written->xAxis().offset, y0 = written->yAxis().offset;
        Region region{x0, y0, x0 + written->width(), y0 + written->height()};
        if (round % 4 == 0) {
            region.x0 += below(written->width());
            region.y1 -= below(written->height());
        }
        const Point seed{region.x0 + below(region.x1 - region.x0),
                         region.y0 + below(region.y1 - region.y0)};
        fill.setRegion(region);
        fill.setKeepWritten(keep);
        fill.setPaintValue(paint);
        fill.setTargetValue(TypeParam{1});
        fill.setSeed(static_cast<float>(seed.first), static_cast<float>(seed.second));
        fill.process(*read, *written);

        const auto area = connected<TypeParam>(*read, region, seed, 1);
        ASSERT_EQ(fill.filledCount(), static_cast<std::int64_t>(area.size())) << "round " << round;
        for (int y = y0; y < y0 + written->height(); ++y) {
            for (int x = x0; x < x0 + written->width(); ++x) {
                const bool inside =
                    x >= region.x0 && x < region.x1 && y >= region.y0 && y < region.y1;
                const TypeParam rest = inside && !keep ? 3 : 5;
                ASSERT_EQ(written->read(x, y), area.contains({x, y}) ? paint : rest)
                    << "round " << round << " at " << x << ' ' << y;
            }
        }
    }
}

TYPED_TEST(FloodFillTest, StaysInsideADiagonalRing)
{
    const FakeServices services;
    const auto read = drawn<TypeParam>(7,
                                       "......."
                                       "...#..."
                                       "..#.#.."
                                       ".#...#."
                                       "..#.#.."
                                       "...#..."
                                       ".......");
    TestMap<TypeParam> written(7, 7);
    FloodFill<TypeParam> fill(TypeParam{9});
    fill.setSeed(3.9f, 3.9f);
    fill.process(*read, *written);
    EXPECT_EQ(fill.filledCount(), 5);
    fill.setSeed(0.0f, 0.0f);
    fill.process(*read, *written);
    EXPECT_EQ(fill.filledCount(), 49 - 8 - 5) << "nor does it leak in";
}

TYPED_TEST(FloodFillTest, MovesItsSeedIntoTheRegion)
{
    const FakeServices services;
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    struct Case {
        float x, y;
        int column, row;
    };
    const Case cases[] = {{-2.0f, -1.0f, 0, 0},    {-99.0f, 99.0f, 0, 2},    {3e9f, -3e9f, 4, 0},
                          {-1.5f, 0.9f, 1, 1},     {-0.5f, -0.5f, 2, 1},     {2.9f, 1.9f, 4, 2},
                          {kInfinity, 0.0f, 4, 1}, {-kInfinity, 0.0f, 0, 1}, {kNan, kNan, 0, 0}};
    for (const Case& c : cases) {
        TestMap<TypeParam> read(5, 3, -2, -1), written(5, 3, -2, -1);
        for (TypeParam& pixel : read.pixels()) pixel = 1;
        read.at(c.column, c.row) = 0;
        FloodFill<TypeParam> fill(TypeParam{9});
        fill.setSeed(c.x, c.y);
        fill.process(*read, *written);
        EXPECT_EQ(written.at(c.column, c.row), 9) << c.x << ' ' << c.y;
    }
}

TYPED_TEST(FloodFillTest, FillsNothingFromASeedOfAnotherValue)
{
    FakeServices services;
    const auto read = drawn<TypeParam>(3, "#........");
    TestMap<TypeParam> written(3, 3);
    FloodFill<TypeParam> fill(TypeParam{9});
    fill.setSeed(1.0f, 1.0f);
    fill.process(*read, *written);
    EXPECT_EQ(fill.filledCount(), 8);
    fill.setSeed(0.0f, 0.0f);
    fill.setClearValue(TypeParam{4});
    fill.process(*read, *written);
    EXPECT_EQ(fill.filledCount(), 0);
    EXPECT_THAT(written.pixels(), Each(4));

    RenderStatus aborted;
    aborted.aborted = 1;
    fill.setSeed(1.0f, 1.0f);
    fill.setStatusRecord(&aborted);
    fill.process(*read, *written);
    EXPECT_EQ(fill.filledCount(), 0);
    EXPECT_THAT(written.pixels(), Each(4));
}

/// A corridor one pixel wide that runs to and fro.
TYPED_TEST(FloodFillTest, FollowsAnyNumberOfSpans)
{
    const FakeServices services(7);
    constexpr int kSide = 601;
    TestMap<TypeParam> corridor(kSide, kSide), written(kSide, kSide);
    for (int i = 1; i < kSide; i += 2) {
        for (int j = 0; j < kSide - 1; ++j) corridor.at(i, i % 4 == 1 ? j : kSide - 1 - j) = 1;
    }
    FloodFill<TypeParam> fill(TypeParam{1});
    for (int round = 0; round < 2; ++round) {
        fill.process(*corridor, *written);
        EXPECT_EQ(fill.filledCount(), 301 * 601 + 300);
    }
}

TEST(FloodFill, ReportsEveryPixelOnce)
{
    class Counting final : public FloodFill<Pixel32f> {
    public:
        using FloodFill::FloodFill;
        void runFilled(int y, int left, int right) override
        {
            for (int x = left; x < right; ++x) reported.emplace_back(x, y);
        }
        std::vector<Point> reported;
    };
    const FakeServices services(4);
    const auto read = drawn<Pixel32f>(4,
                                      "...#"
                                      ".#.#"
                                      "...#");
    TestMap<Pixel32f> written(4, 3);
    Counting fill(255.0f);
    fill.process(*read, *written);
    EXPECT_EQ(fill.reported.size(), 8u);
    EXPECT_EQ(std::set<Point>(fill.reported.begin(), fill.reported.end()),
              connected<Pixel32f>(*read, {0, 0, 4, 3}, {0, 0}, 0.0f));
}

TEST(FloodFill, PaintsTheMaximumIntegerByDefault)
{
    const FakeServices services;
    TestMap<Pixel32i> read(2, 1), written(2, 1);
    read.pixels() = {0, -1};
    FloodFill<Pixel32i> fill;
    fill.process(*read, *written);
    EXPECT_THAT(written.pixels(), ElementsAre(2147483647, 0));
}

}  // namespace
}  // namespace Orvane::Engine
