#include <stdexcept>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quality/FillScorer.h"
#include "quality/TextureScale.h"
#include "tests/quality/DrawnTextures.h"

namespace Tesseret::Quality {
namespace {

using namespace Testing;
using ::testing::AllOf;
using ::testing::Ge;
using ::testing::Le;

MATCHER_P(IsAbout, value, "")
{
    return std::abs(arg - value) <= 0.15;
}

Visibility scored(const Picture& source, const Picture& filled)
{
    return FillScorer(source, lostBox(), kArea).score(filled);
}

TEST(FillScorerTest, GivesAnUntouchedRegionAboutOneOnEveryGround)
{
    const Tone textures[] = {stones(14), stones(40), checks(24), sky, skyOverStones(160)};
    for (std::size_t i = 0; i < std::size(textures); ++i) {
        const Picture source = drawn(textures[i]);
        const Visibility own = scored(source, source);
        EXPECT_THAT(own.total, IsAbout(1.0)) << "texture " << i;
        EXPECT_THAT(own.repeats, IsAbout(1.0)) << "texture " << i;
        EXPECT_THAT(own.inside, AllOf(Ge(0.7), Le(1.4))) << "texture " << i;
    }
}

/// A fill that goes on with the texture, against others: each fault shows in its own part and in
/// the total.
class FaultTest : public ::testing::Test {
protected:
    const Tone texture_ = stones(14);
    const Picture source_ = drawn(texture_);
    const FillScorer scorer_{source_, lostBox(), kArea};
    /// Other stones of the same kind, cut along the area's edge.
    const Visibility right_ = scorer_.score(filledBy(source_, stones(14, 30)));
};

TEST_F(FaultTest, AFillOfTheSameTextureIsHardlyVisible)
{
    EXPECT_LE(right_.total, 1.15 * scorer_.score(source_).total);
}

TEST_F(FaultTest, Blur)
{
    const Visibility blurry = scorer_.score(filledBy(source_, blurred(texture_, 3)));
    EXPECT_GT(blurry.structure, right_.structure + 0.3);
    EXPECT_GT(blurry.total, right_.total + 0.1);
}

TEST_F(FaultTest, Mush)
{
    const Visibility mush = scorer_.score(filledBy(source_, blocksOf(texture_, 5)));
    const Visibility blocks = scorer_.score(filledBy(source_, blocksOf(texture_, 48)));
    EXPECT_GT(mush.inside, blocks.inside + 0.3);
    EXPECT_GT(mush.total, blocks.total + 0.1);
}

TEST_F(FaultTest, BrightnessStep)
{
    double last = right_.total;
    for (const double step : {25.0, 60.0}) {
        const Visibility brighter = scorer_.score(
            filledBy(source_, [&](int x, int y) { return stones(14, 30)(x, y) + step; }));
        EXPECT_GT(brighter.step, right_.step + step / 200);
        EXPECT_GT(brighter.total, last + 0.03) << step;
        last = brighter.total;
    }
}

TEST_F(FaultTest, AStepInsideWhereTheBorderFits)
{
    const Visibility patch = scorer_.score(filledBy(source_, [&](int x, int y) {
        const bool middle = x >= 140 && x < 180 && y >= 140 && y < 180;
        return stones(14, 30)(x, y) + (middle ? 50 : 0);
    }));
    EXPECT_GT(patch.inside, right_.inside + 0.02);
    EXPECT_GT(patch.total, right_.total + 0.02);
}

TEST_F(FaultTest, SomethingElse)
{
    const Visibility other = scorer_.score(filledBy(source_, checks(24)));
    EXPECT_GT(other.inside, right_.inside + 0.05);
    EXPECT_GT(other.step, 1.5);
    EXPECT_GT(other.structure, 1.5);
    EXPECT_GT(other.total, right_.total + 0.3);
}

/// What is lost is no reference, also what others lost.
TEST_F(FaultTest, WhatIsRemoved)
{
    const OfxRectI second{20, 20, 84, 84};
    const Tone thing = [&](int x, int y) {
        const bool there = (x >= kArea.x1 && x < kArea.x2 && y >= kArea.y1 && y < kArea.y2) ||
                           (x >= second.x1 && x < second.x2 && y >= second.y1 && y < second.y2);
        return there ? checks(24)(x, y) : texture_(x, y);
    };
    const Picture source = drawn(thing);
    Picture lost = lostBox();
    const Visibility known = FillScorer(source, lost, kArea).score(source);
    lost.paste(lostBox(second).copied(second, {}));
    const Visibility unknown = FillScorer(source, lost, kArea).score(source);
    EXPECT_GT(unknown.inside, known.inside + 0.2);
    EXPECT_GT(unknown.total, known.total + 0.1);
}

TEST_F(FaultTest, RemainsOutsideOfATightMatte)
{
    const OfxRectI wide{kArea.x1 - 3, kArea.y1 - 3, kArea.x2 + 3, kArea.y2 + 3};
    const Picture source = filledBy(
        source_, [](int, int) { return 250.0; }, wide);
    const FillScorer scorer(source, lostBox(), kArea);
    const Visibility remains = scorer.score(filledBy(source, stones(14, 30)));
    const Visibility clean = scorer.score(filledBy(source, stones(14, 30), wide));
    EXPECT_GT(remains.rim, clean.rim + 0.2);
    EXPECT_GT(remains.total, clean.total);
}

TEST(RepeatsTest, CountALandmarkThatIsCopiedSeveralTimes)
{
    const auto landmark = [](int x, int y) {
        return (x - 40) * (x - 40) + (y - 40) * (y - 40) < 18 * 18;
    };
    const Tone texture = [&](int x, int y) {
        return landmark(x, y) ? 235 + 10 * hashed(x, y, 3) : stones(14)(x, y);
    };
    const auto moved = [&](int dx, int dy, int salt) {
        return [=](int x, int y) {
            return landmark(x - dx, y - dy) ? texture(x - dx, y - dy) : stones(14, salt)(x, y);
        };
    };
    const Picture source = drawn(texture);
    const FillScorer scorer(source, lostBox(), kArea);
    const Visibility none = scorer.score(filledBy(source, stones(14, 30)));
    const Visibility twice = scorer.score(filledBy(source, [&](int x, int y) {
        return x < 160 ? moved(96, 120, 30)(x, y) : moved(144, 120, 30)(x, y);
    }));
    EXPECT_THAT(none.repeats, IsAbout(1.0));
    EXPECT_GT(twice.repeats, none.repeats + 0.05);
}

// A smooth ground in place of a rough one looks like the picture; the line between them tells.
TEST(TwoGroundsTest, TheWrongGroundIsVisible)
{
    const Picture source = drawn(skyOverStones(160));
    const TextureScale scale(source, lostBox(), kArea);
    ASSERT_TRUE(scale.grounds());
    const FillScorer scorer(source, lostBox(), kArea, scale.grounds());
    const double own = scorer.score(source).total;
    const double allSky = scorer.score(filledBy(source, skyOverStones(0))).total;
    const double allStones = scorer.score(filledBy(source, skyOverStones(kSide))).total;
    const double shifted = scorer.score(filledBy(source, skyOverStones(175))).total;
    EXPECT_GT(allSky, own + 0.08);
    EXPECT_GT(allStones, own + 0.08);
    EXPECT_GT(shifted, own + 0.08);
}

TEST(SmoothGroundTest, InvisibleNoiseCountsLessThanAVisibleStep)
{
    const Picture source = drawn(sky);
    const FillScorer scorer(source, lostBox(), kArea);
    const auto plus = [&](double step) {
        return scorer.score(filledBy(source, [&](int x, int y) { return sky(x, y) + step; })).total;
    };
    EXPECT_THAT(plus(0), IsAbout(1.0));
    EXPECT_LT(plus(1), 1.2);
    EXPECT_GT(plus(12), plus(1) + 0.1);
}

TEST(LayoutTest, DepthsComponentsRowsAndPlaceGiveTheSameScore)
{
    const Picture source = drawn(skyOverStones(160));
    const Picture filled = filledBy(source, blocksOf(stones(14), 24));
    const Visibility expected = scored(source, filled);
    for (const Depth depth : {Depth::Byte, Depth::Short, Depth::Float}) {
        for (const Components components : {Components::RGBA, Components::RGB}) {
            const Visibility found =
                scored(source.converted(depth, components), filled.converted(depth, components));
            EXPECT_NEAR(found.total, expected.total, 1e-9) << depthName(depth);
            EXPECT_NEAR(found.structure, expected.structure, 1e-9) << depthName(depth);
        }
    }
    const RowLayout layout{true, 12};
    EXPECT_EQ(expected.total,
              scored(source.copied(source.bounds(), layout), filled.copied(filled.bounds(), layout))
                  .total);

    const auto moved = [](const Picture& picture) {
        Picture result({-1000, 50, -1000 + kSide, 50 + kSide}, picture.depth(),
                       picture.components());
        for (int y = 0; y < kSide; ++y) {
            std::copy_n(picture.row(y), picture.pixelBytes() * kSide, result.row(50 + y));
        }
        return result;
    };
    const OfxRectI area{kArea.x1 - 1000, kArea.y1 + 50, kArea.x2 - 1000, kArea.y2 + 50};
    EXPECT_EQ(expected.total,
              FillScorer(moved(source), moved(lostBox()), area).score(moved(filled)).total);
}

TEST(LayoutTest, AlphaAloneAndBrightLightAreScored)
{
    const Picture source = drawn(stones(14)), filled = filledBy(source, blurred(stones(14), 3));
    const auto alone = [](const Picture& picture) {
        Picture result(picture.bounds(), Depth::Byte, Components::Alpha);
        for (int y = 0; y < kSide; ++y) {
            for (int x = 0; x < kSide; ++x) {
                result.setChannel(x, y, 0, picture.channel(x, y, 0));
            }
        }
        return result;
    };
    EXPECT_GT(scored(alone(source), alone(filled)).total,
              scored(alone(source), alone(source)).total);

    // Linear light with a sun far above white, and not a number.
    const auto light = [](const Picture& picture) {
        Picture result = picture.converted(Depth::Float, Components::RGBA);
        for (int y = 0; y < kSide; ++y) {
            for (int x = 0; x < kSide; ++x) {
                for (int c = 0; c < 3; ++c) {
                    const double value = result.channel(x, y, c);
                    result.setChannel(x, y, c, value * value * (x < 12 ? 900 : 2));
                }
            }
        }
        result.setChannel(300, 300, 1, std::numeric_limits<double>::quiet_NaN());
        return result;
    };
    EXPECT_THAT(scored(light(source), light(source)).total, IsAbout(1.0));
    EXPECT_GT(scored(light(source), light(filled)).total, 1.0);
}

TEST(ThreadsTest, GetTheSameScore)
{
    const Picture source = drawn(stones(14));
    const Picture filled = filledBy(source, blocksOf(stones(14), 24));
    const FillScorer scorer(source, lostBox(), kArea);
    const double expected = FillScorer(source, lostBox(), kArea).score(filled).total;
    std::vector<double> totals(4);
    std::vector<std::thread> threads;
    threads.reserve(totals.size());
    for (double& total : totals) {
        threads.emplace_back([&] { total = scorer.score(filled).total; });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_THAT(totals, ::testing::Each(expected));
}

TEST(RequestTest, RefusesWhatDoesNotFit)
{
    const Picture source = drawn(sky);
    const Picture small({0, 0, 10, 10}, Depth::Byte, Components::Alpha);
    EXPECT_THROW(FillScorer(source, small, kArea), std::invalid_argument);
    EXPECT_THROW(FillScorer(source, source, kArea), std::invalid_argument);
    EXPECT_THROW(FillScorer(source, lostBox(), OfxRectI{900, 900, 910, 910}),
                 std::invalid_argument);
    const FillScorer scorer(source, lostBox(), kArea);
    EXPECT_THROW(scorer.score(source.converted(Depth::Short, Components::RGBA)),
                 std::invalid_argument);
}

/// Nothing known remains, or hardly anything: no crash, and a number.
TEST(RequestTest, ScoresWhatHasNoReference)
{
    for (const int rim : {0, 3, 12, 30}) {
        const OfxRectI box{rim, rim, kSide - rim, kSide - rim};
        const Picture source = drawn(stones(14));
        const double total = FillScorer(source, lostBox(box), box).score(source).total;
        EXPECT_THAT(total, AllOf(Ge(0.3), Le(4.0))) << rim;
    }
    const Picture tiny({0, 0, 3, 2}, Depth::Byte);
    const Picture lost({0, 0, 3, 2}, Depth::Byte, Components::Alpha);
    EXPECT_EQ(FillScorer(tiny, lost, {0, 0, 1, 1}).score(tiny).total, 1.0);
}

}  // namespace
}  // namespace Tesseret::Quality
