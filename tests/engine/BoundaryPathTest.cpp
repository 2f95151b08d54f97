#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>

#include <gmock/gmock.h>

#include "engine/boundary/BoundaryPath.h"
#include "engine/boundary/Octant.h"
#include "engine/filter/BandNodes.h"
#include "engine/filter/BoxBlur.h"
#include "tests/fixtures/FakeServices.h"
#include "tests/fixtures/MapBuilder.h"
#include "tests/fixtures/ReferencePath.h"

namespace Orvane::Engine {
namespace {

using Testing::FakeServices;
using Testing::noise;
using Testing::solid;
using Testing::TestMap;

using Shape = std::function<bool(int x, int y)>;

constexpr int kSize = 120;

/// The octant by its definition: the angle, rounded to a float, against odd multiples of pi / 8.
std::size_t octantByDefinition(const PixelVec2f& g)
{
    const auto angle =
        static_cast<float>(std::atan2(-static_cast<double>(g.x), static_cast<double>(g.y)));
    std::size_t octant = 5;
    const std::array<std::pair<float, std::size_t>, 6> limits{{{-1.9634955f, 6},
                                                               {-1.1780972f, 7},
                                                               {-0.3926991f, 0},
                                                               {0.3926991f, 1},
                                                               {1.1780972f, 2},
                                                               {1.9634955f, 3}}};
    for (const auto& [limit, beyond] : limits) {
        if (angle > limit) octant = beyond;
    }
    return angle > 2.7488937f || angle <= -2.7488937f ? 4 : octant;
}

TEST(Octant, IsThatOfTheRoundedAngleUpToTheLimits)
{
    const auto expectSame = [](float x, float y) {
        EXPECT_EQ(octantOf({x, y}), octantByDefinition({x, y})) << x << ' ' << y;
    };
    const float inf = std::numeric_limits<float>::infinity();
    for (const float x : {0.0f, -0.0f, 1.0f, -3.5f, 1e-40f, inf, -inf, std::nanf("")}) {
        for (const float y : {0.0f, -0.0f, 1.0f, -3.5f, 1e-40f, inf, -inf, std::nanf("")}) {
            expectSame(x, y);
        }
    }
    // Pixels of a mask differ by small integers, and by a float or two from a limit's slope.
    for (int x = -40; x <= 40; ++x) {
        for (int y = -40; y <= 40; ++y) {
            expectSame(static_cast<float>(x), static_cast<float>(y));
        }
    }
    for (int i = 0; i < 8; ++i) {
        const double limit = (2 * i + 1) * 3.14159265358979323846 / 8.0;
        const auto length = 200.0 / (1 + i);
        const auto x = static_cast<float>(-std::sin(limit) * length);
        auto y = static_cast<float>(std::cos(limit) * length);
        for (int step = 0; step < 200; ++step) y = std::nextafter(y, -inf);
        for (int step = 0; step < 400; ++step) expectSame(x, y = std::nextafter(y, inf));
        for (const double off : {-2e-3, -2e-5, 2e-5, 2e-3}) {
            expectSame(static_cast<float>(-std::sin(limit + off) * length),
                       static_cast<float>(std::cos(limit + off) * length));
        }
    }
}

/// The inputs of a boundary path, round a region of any shape in a square image.
template <typename Pixel>
struct Scene {
    static constexpr float kMax = PixelTraits<Pixel>::kMax;

    explicit Scene(const Shape& shape, float pathWidth = 6.0f)
    {
        for (int y = 0; y < kSize; ++y) {
            for (int x = 0; x < kSize; ++x) fillMask.at(x, y) = shape(x, y) ? kMax : 0.0f;
        }
        BoxBlur blur(BoxBlur::ThreeApplications, pathWidth);
        blur.process(*fillMask, *band);
        MaskGradient().process(*band, *gradient);
        BandCut(kMax).process(*fillMask, *band);
    }
    PathSearchInputs<Pixel> search()
    {
        return {{0, 0, kSize, kSize}, &*band, &*gradient, &*texture, &*source};
    }
    BoundaryOutcome fit(int seed, float edgeBlend = 0.0f)
    {
        BoundaryInputs<Pixel> inputs;
        inputs.search = search();
        inputs.fillMask = &*fillMask;
        inputs.seed = seed;
        inputs.edgeBlend = edgeBlend;
        return fitBoundaryPath(inputs, mask);
    }

    TestMap<Pixel32f> fillMask{kSize, kSize}, band{kSize, kSize};
    TestMap<PixelVec2f> gradient{kSize, kSize};
    TestMap<Pixel> texture = noise<Pixel>(kSize, kSize, 1), source = noise<Pixel>(kSize, kSize, 2);
    Map<Pixel32f> mask;
};

bool disc(int x, int y)
{
    return (x - 60) * (x - 60) + (y - 55) * (y - 55) < 24 * 24;
}

bool angle(int x, int y)  // with a concave corner
{
    return x >= 30 && x < 90 && y >= 30 && y < 90 && (x < 45 || y < 45);
}

template <typename Pixel>
class Boundary : public ::testing::Test {};
using Depths = ::testing::Types<PixelRGBA8, PixelRGBA16, PixelRGBAf>;
TYPED_TEST_SUITE(Boundary, Depths);

TYPED_TEST(Boundary, PathIsAClosedLoopInTheBand)
{
    const FakeServices services;
    Scene<TypeParam> scene(disc);
    PathSearch<TypeParam> search(scene.search());
    ASSERT_EQ(search.run({60 + 26, 55}), PathOutcome::Closed);
    const std::vector<PixelPoint>& path = search.path();
    ASSERT_GT(path.size(), 100u);
    double turned = 0.0;
    for (std::size_t i = 0; i < path.size(); ++i) {
        const PixelPoint& a = path[i];
        const PixelPoint& b = path[(i + 1) % path.size()];
        EXPECT_LE(std::max(std::abs(a.x - b.x), std::abs(a.y - b.y)), 1);
        EXPECT_GT(scene.band->read(a.x, a.y), 0.0f);
        const double ax = a.x - 60, ay = a.y - 55, bx = b.x - 60, by = b.y - 55;
        turned += std::atan2(ax * by - ay * bx, ax * bx + ay * by);
    }
    EXPECT_NEAR(std::abs(turned), 6.2831853, 1e-6) << "once round the region";
}

bool star(int x, int y)
{
    const double angle = std::atan2(y - 58, x - 62);
    return std::hypot(x - 62, y - 58) < 26.0 + 9.0 * std::cos(5.0 * angle);
}

bool speck(int x, int y)  // so small that the way round it is hardly longer than the straight one
{
    return x >= 59 && x < 62 && y >= 54 && y < 56;
}

/// From cuts all round the region: the same loop as the plain search, whose end is the arrival cell
/// of minimum mean cost.
TYPED_TEST(Boundary, PathIsTheBestThatReachesTheCut)
{
    const FakeServices services;
    int closed = 0;
    struct Region {
        Shape shape;
        float pathWidth;
    };
    for (const auto& [shape, pathWidth] :
         {Region{disc, 6.0f}, Region{angle, 6.0f}, Region{star, 6.0f}, Region{speck, 1.0f},
          Region{speck, 2.0f}}) {
        Scene<TypeParam> scene(shape, pathWidth);
        for (int turn = 0; turn < 32; ++turn) {
            if (turn == 24) scene.source.pixels() = scene.texture.pixels();  // nothing but ties
            const double direction = turn * 6.2831853 / 24;
            PixelPoint start{60, 55};
            for (double r = 0.0; scene.band->read(start.x, start.y) == 0.0f; r += 0.5) {
                start = {static_cast<int>(60 + r * std::cos(direction)),
                         static_cast<int>(55 + r * std::sin(direction))};
            }
            PathSearch<TypeParam> search(scene.search());
            Reference::BoundaryPath plain;
            plain.band = [&](auto p) { return scene.band->read(p.first, p.second); };
            plain.cost = [&](auto p) { return search.pixelCost({p.first, p.second}); };
            plain.gradient = [&](auto p) {
                const PixelVec2f g = scene.gradient->read(p.first, p.second);
                return std::pair(g.x, g.y);
            };
            const bool expected = plain.search({start.x, start.y}, kSize, kSize);
            ASSERT_EQ(search.run(start) == PathOutcome::Closed, expected) << turn;
            if (!expected) continue;
            ++closed;
            std::vector<Reference::BoundaryPath::Point> path;
            for (const PixelPoint p : search.path()) path.emplace_back(p.x, p.y);
            ASSERT_EQ(path, plain.path) << turn;
            for (const auto& p : plain.arrivals) {
                ASSERT_TRUE(plain.count(p) <= 0.0f || plain.mean(p) >= plain.mean(path[0]));
            }
        }
    }
    EXPECT_GT(closed, 48);
}

TYPED_TEST(Boundary, EnclosesTheRegionOrTakesItItself)
{
    const FakeServices services(2);
    for (const auto& shape : {Shape(disc), Shape(angle), Shape(star)}) {
        int fitted = 0;
        Scene<TypeParam> scene(shape);
        for (int seed = 0; seed < 12; ++seed) {
            const BoundaryOutcome outcome = scene.fit(seed);
            ASSERT_NE(outcome, BoundaryOutcome::NoPath);
            fitted += outcome == BoundaryOutcome::Fitted;
            for (int y = 0; y < kSize; ++y) {
                for (int x = 0; x < kSize; ++x) {
                    const float value = scene.mask.read(x, y);
                    const bool region = scene.fillMask.at(x, y) != 0.0f;
                    const bool near = region || scene.band.at(x, y) != 0.0f;
                    ASSERT_TRUE(value == 0.0f || value == Scene<TypeParam>::kMax);
                    ASSERT_TRUE(value != 0.0f || !region) << "left out " << x << ' ' << y;
                    ASSERT_TRUE(value == 0.0f || near) << "ran out to " << x << ' ' << y;
                }
            }
        }
        EXPECT_GT(fitted, 0);
    }
}

TYPED_TEST(Boundary, FollowsThePixelsWhereTheImagesAgree)
{
    const FakeServices services;
    Scene<TypeParam> scene(disc);
    // The images agree only on one ring of the band, three pixels wide.
    for (int y = 0; y < kSize; ++y) {
        for (int x = 0; x < kSize; ++x) {
            const double distance = std::hypot(x - 60, y - 55);
            const bool agrees = distance >= 27.0 && distance < 30.0;
            scene.texture.at(x, y) = Testing::grey<TypeParam>(0.0f);
            scene.source.at(x, y) = Testing::grey<TypeParam>(agrees ? 0.0f : 1.0f);
        }
    }
    PathSearch<TypeParam> search(scene.search());
    ASSERT_EQ(search.run({60 + 26, 55}), PathOutcome::Closed);
    int off = 0;
    for (const PixelPoint p : search.path()) off += search.pixelCost(p) != 0.0f;
    EXPECT_LT(off * 5, static_cast<int>(search.path().size()));
}

TEST(BoundaryCost, IsTheMeanSquaredDifference)
{
    const FakeServices services;
    Scene<PixelRGBA8> scene(disc);
    scene.texture.at(5, 5) = {255, 255, 255, 0};
    scene.source.at(5, 5) = {0, 0, 0, 255};
    scene.texture.at(6, 5) = {10, 7, 1, 9};
    scene.source.at(6, 5) = {10, 8, 3, 200};
    const PathSearch<PixelRGBA8> search(scene.search());
    EXPECT_EQ(search.pixelCost({5, 5}), 255.0f * 255.0f);
    EXPECT_EQ(search.pixelCost({6, 5}), 1.0f) << "5 / 3";

    Scene<PixelRGBA16> deep(disc);
    deep.texture.at(5, 5) = {65535, 65535, 65535, 0};
    deep.source.at(5, 5) = {0, 0, 0, 0};
    EXPECT_EQ(PathSearch<PixelRGBA16>(deep.search()).pixelCost({5, 5}), 65535.0f * 65535.0f);
    Scene<PixelRGBAf> floats(disc);
    floats.texture.at(5, 5) = {1.0f, 0.5f, 0.25f, 0.0f};
    floats.source.at(5, 5) = {0.0f, 0.0f, 0.0f, 0.0f};
    floats.texture.at(6, 5) = {0.0625f, 0.125f, 0.0f, 0.0f};
    floats.source.at(6, 5) = {0.0f, 0.0f, 0.0f, 0.0f};
    const PathSearch<PixelRGBAf> ofFloats(floats.search());
    EXPECT_EQ(ofFloats.pixelCost({5, 5}), 1.3125f * 0.33333334f);
    EXPECT_EQ(ofFloats.pixelCost({6, 5}), 0.01953125f * 0.33333334f) << "a quotient differs";
}

TEST(Boundary8, WithoutAWayRoundTheMaskStaysUnchanged)
{
    FakeServices services;
    struct Case {
        const char* what;
        void (*spoil)(Scene<PixelRGBA8>&);
    };
    const Case cases[] = {
        {"empty band", [](auto& scene) { std::ranges::fill(scene.band.pixels(), 0.0f); }},
        {"band without slope",
         [](auto& scene) {
             std::ranges::fill(scene.gradient.pixels(), PixelVec2f{0.0f, 0.0f});
         }},
        {"slope that is no number",
         [](auto& scene) {
             const float nan = std::numeric_limits<float>::quiet_NaN();
             std::ranges::fill(scene.gradient.pixels(), PixelVec2f{nan, nan});
         }},
        {"band cut through",
         [](auto& scene) {
             for (int x = 0; x < kSize; ++x) scene.band.at(x, 55) = 0.0f;
         }},
    };
    for (const Case& c : cases) {
        Scene<PixelRGBA8> scene(disc);
        c.spoil(scene);
        scene.mask.setSize(3, 3);
        for (int seed = 0; seed < 4; ++seed) {
            EXPECT_EQ(scene.fit(seed, 5.0f), BoundaryOutcome::NoPath) << c.what;
            EXPECT_EQ(scene.mask.width(), 3) << c.what;
        }
    }
    // A band without an outer edge: the walks end at the edge of the image.
    Scene<PixelRGBA8> everywhere(disc);
    std::ranges::fill(everywhere.band.pixels(), 200.0f);
    EXPECT_NE(everywhere.fit(1), BoundaryOutcome::Fitted);

    Scene<PixelRGBA8> scene(disc);
    services.memory.refuseAll = true;
    EXPECT_EQ(scene.fit(1), BoundaryOutcome::NoPath);
}

TEST(Boundary8, EndsWhereFloatsCannotDistinguishPixels)
{
    const FakeServices services;
    Scene<PixelRGBA8> scene(disc);
    for (const int far : {1 << 24, 1 << 26, 1'000'000'000}) {
        for (int i = 0; i < 16; ++i) {
            const int top = far + i % 4;
            PathSearchInputs<PixelRGBA8> inputs = scene.search();
            inputs.work = {0, top, kSize, top + kSize};
            scene.band->placeAt(0, top);
            scene.gradient->placeAt(0, top);
            PathSearch<PixelRGBA8> search(inputs);
            search.run({60 + 26, top + 48 + i});
            EXPECT_LT(search.path().size(), 2u * kSize * kSize);
        }
    }
}

TEST(Boundary8, SoftensTheEdgeFromItsThresholdOn)
{
    const FakeServices services;
    Scene<PixelRGBA8> scene(disc);
    const auto softPixels = [&](float edgeBlend) {
        scene.fit(3, edgeBlend);
        int count = 0;
        for (int y = 0; y < kSize; ++y) {
            for (int x = 0; x < kSize; ++x) {
                const float value = scene.mask.read(x, y);
                count += value != 0.0f && value != 255.0f;
            }
        }
        return count;
    };
    EXPECT_EQ(softPixels(0.0f), 0);
    EXPECT_EQ(softPixels(0.01f), 0);
    EXPECT_GT(softPixels(0.011f), 100);
    EXPECT_GT(softPixels(200.0f), 10000);
}

}  // namespace
}  // namespace Orvane::Engine
