#include <algorithm>
#include <array>
#include <limits>
#include <numeric>
#include <random>

#include <gmock/gmock.h>

#include "engine/boundary/WeightedPointPicker.h"
#include "tests/fixtures/FakeServices.h"
#include "tests/fixtures/MapBuilder.h"

namespace Orvane::Engine {
namespace {

using ::testing::ElementsAre;
using Testing::FakeServices;
using Testing::TestMap;
using Points = std::vector<std::optional<PixelVec2f>>;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

struct Draw {
    int weightCap = 255, seed = 1, count = 1;
    float low = 0.0f, high = 255.0f;
};

Points pick(const Map<Pixel32f>& map, const Draw& draw, RenderStatus* status = nullptr)
{
    WeightedPointPicker picker(draw.weightCap);
    picker.setStatusRecord(status);
    picker.setNumPoints(draw.count);
    picker.setSeed(draw.seed);
    picker.setRange(draw.low, draw.high);
    picker.process(map);
    EXPECT_EQ(picker.getPoint(draw.count), (PixelVec2f{0.0f, 0.0f}));
    EXPECT_EQ(picker.getPoint(-1), (PixelVec2f{0.0f, 0.0f}));
    Points points;
    for (int i = 0; i < draw.count; ++i) points.push_back(picker.getPoint(i));
    return points;
}

/// The draw on a plain list of weights.
Points reference(const TestMap<Pixel32f>& map, const Draw& draw)
{
    const int width = map->width(), x0 = map->xAxis().origin, y0 = map->yAxis().origin;
    const auto cap = static_cast<float>(draw.weightCap);
    std::vector<float> weights;
    for (const float v : map.pixels()) {
        const float w = (v - draw.low) * (cap / (draw.high - draw.low));
        weights.push_back(w > 0.0f ? std::min(w, cap) : 0.0f);
    }
    auto seed = static_cast<std::uint32_t>(draw.seed);
    const auto noise = [&seed] {
        const std::uint32_t n = seed << 13 ^ seed;
        const std::uint32_t r = (n * (n * n * 15731u + 789221u) + 3523796237u) % 2147483648u;
        seed += 100;
        return 1.0 - r / 2147483648.0;
    };
    const double total = std::accumulate(weights.begin(), weights.end(), 0.0);
    std::vector<double> targets(static_cast<std::size_t>(draw.count));
    for (double& target : targets) target = noise() * total;
    std::sort(targets.begin(), targets.end());

    std::vector<int> rows;
    double sum = 0.0;
    for (std::size_t i = 0; i < weights.size() && rows.size() < targets.size(); ++i) {
        sum += weights[i];
        if (targets[rows.size()] <= sum) rows.push_back(static_cast<int>(i) / width);
    }
    Points points;
    for (const int y : rows) {
        const auto row = weights.begin() + y * width;
        const double drawn = noise() * std::accumulate(row, row + width, 0.0);
        float running = 0.0f;
        int x = 0;
        while (drawn >= (running += row[x])) ++x;
        points.push_back(PixelVec2f{static_cast<float>(x0 + x), static_cast<float>(y0 + y)});
    }
    return points;
}

TEST(WeightedPointPicker, DrawsByTheNoiseWorkedOutByHand)
{
    const FakeServices services;
    // Seed 0: n = 0, r = 0x5208DD0D, value 0.3591045. Seed 100: r = 160932161, value 0.9250601.
    TestMap<Pixel32f> column(1, 1000), row(1000, 1);
    column.pixels().assign(1000, 7.0f);
    row.pixels().assign(1000, 7.0f);
    EXPECT_THAT(pick(*column, {.seed = 0}), ElementsAre(PixelVec2f{0.0f, 359.0f}));
    EXPECT_THAT(pick(*row, {.seed = -100}), ElementsAre(PixelVec2f{359.0f, 0.0f}));
    EXPECT_THAT(pick(*row, {.seed = 0}), ElementsAre(PixelVec2f{925.0f, 0.0f}));
}

TEST(WeightedPointPicker, AgreesWithThePlainDrawForEveryThreadCount)
{
    std::mt19937 random(3);
    for (int round = 0; round < 60; ++round) {
        const FakeServices services(
            std::array{1u, 2u, 4u, 7u}[static_cast<std::size_t>(round % 4)]);
        TestMap<Pixel32f> map(9, 13, -4, -20);
        // Quarters up to beyond both ends of the range, which add up without rounding.
        for (float& v : map.pixels()) v = static_cast<float>(random() % 2400) / 4.0f - 150.0f;
        map.at(3, 3) = kNaN;
        map.at(4, 4) = kInfinity;
        map.at(5, 5) = -kInfinity;
        for (const Draw& draw : {Draw{.seed = round}, Draw{.seed = -5 * round, .count = 6},
                                 Draw{.weightCap = 65535,
                                 .seed = 1 << 30,
                                 .count = 2,
                                 .low = -20.0f,
                                 .high = 108.0f}}) {
            EXPECT_EQ(pick(*map, draw), reference(map, draw)) << round;
        }
    }
}

TEST(WeightedPointPicker, FindsTheOnlyPixelThatWeighsAnything)
{
    const FakeServices services(3);
    for (const int weightCap : {1, 255, 65535}) {
        TestMap<Pixel32f> map(40, 30, -7, 11);
        map.at(23, 17) = 0.5f;
        for (int seed = -200; seed < 200; ++seed) {
            const Draw draw{
                .weightCap = weightCap, .seed = seed * 7919, .high = static_cast<float>(weightCap)};
            ASSERT_THAT(pick(*map, draw), ElementsAre(PixelVec2f{16.0f, 28.0f})) << seed;
        }
    }
}

TEST(WeightedPointPicker, MatchesOneTargetForEachPixel)
{
    const FakeServices services;
    TestMap<Pixel32f> map(1, 3);
    map.pixels() = {255.0f, 1e-4f, 1e-4f};
    for (int seed = 0; seed < 50; ++seed) {
        EXPECT_THAT(pick(*map, {.seed = seed, .count = 2}),
                    ElementsAre(PixelVec2f{0.0f, 0.0f}, PixelVec2f{0.0f, 1.0f}));
    }
    EXPECT_EQ(pick(*map, {.count = 4})[3], std::nullopt) << "more points than pixels";
}

TEST(WeightedPointPicker, ReturnsNothingWhenThereIsNoPoint)
{
    const FakeServices services(2);
    TestMap<Pixel32f> map(5, 4);
    EXPECT_THAT(pick(*map, {.count = 2}), ElementsAre(std::nullopt, std::nullopt));
    map.pixels().assign(20, kNaN);
    EXPECT_THAT(pick(*map, {}), ElementsAre(std::nullopt));
    map.pixels().assign(20, 200.0f);
    EXPECT_THAT(pick(*map, {.low = 9.0f, .high = 9.0f}), ElementsAre(std::nullopt));
    RenderStatus aborted;
    aborted.aborted = 1;
    EXPECT_THAT(pick(*map, {}, &aborted), ElementsAre(std::nullopt));
    EXPECT_THAT(pick(Map<Pixel32f>(), {}), ElementsAre(std::nullopt));
    EXPECT_TRUE(pick(*map, {.count = 0}).empty());

    // In floats the ones vanish beside 2^24, so the column's running weight ends below the weight
    // of the row, and below a draw of nearly all of it (seed 469307: r = 237).
    TestMap<Pixel32f> row(100, 1);
    row.pixels().assign(100, 1.0f);
    row.at(0, 0) = 16777216.0f;
    EXPECT_THAT(pick(*row, {.weightCap = 1 << 24, .seed = 469207, .high = 16777216.0f}),
                ElementsAre(std::nullopt));
}

}  // namespace
}  // namespace Orvane::Engine
