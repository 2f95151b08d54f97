#include <gtest/gtest.h>

#include "quality/TextureScale.h"
#include "tests/quality/DrawnTextures.h"

namespace Tesseret::Quality {
namespace {

using namespace Testing;

TextureScale scaleOf(const Tone& texture)
{
    return TextureScale(drawn(texture), lostBox(), kArea);
}

TEST(TextureScaleTest, FindsThePeriodOfAPattern)
{
    for (const int size : {12, 24, 40}) {
        // Checks repeat along the diagonal first.
        EXPECT_NEAR(scaleOf(checks(size)).period(), size * std::sqrt(2.0), 0.15 * size) << size;
    }
    const Tone stripes = [](int x, int y) { return x % 36 < 18 ? 60 + sky(x, y) / 50 : 180; };
    EXPECT_NEAR(scaleOf(stripes).period(), 36, 3);
}

TEST(TextureScaleTest, FindsNoPeriodWhereThereIsNone)
{
    EXPECT_EQ(scaleOf(stones(14)).period(), 0);
    EXPECT_EQ(scaleOf([](int x, int y) { return 128 + 60 * hashed(x, y, 1); }).period(), 0);
    EXPECT_EQ(scaleOf(sky).period(), 0);
    EXPECT_EQ(scaleOf([](int, int) { return 90.0; }).period(), 0);
}

TEST(TextureScaleTest, TheElementSizeGrowsWithTheStones)
{
    const double small = scaleOf(stones(10)).elementSize();
    const double large = scaleOf(stones(40)).elementSize();
    EXPECT_GT(large, 2 * small);
    EXPECT_NEAR(large, 40, 20);
}

TEST(TextureScaleTest, TellsSmoothGroundsFromRoughOnes)
{
    EXPECT_LT(scaleOf(sky).roughness(), 0.008);
    EXPECT_GT(scaleOf(stones(14)).roughness(), 0.02);
}

TEST(TextureScaleTest, DividesTwoGroundsByALine)
{
    const auto line = scaleOf(skyOverStones(150)).grounds();
    ASSERT_TRUE(line.has_value());
    EXPECT_NEAR(std::abs(line->normalY), 1, 0.05);
    EXPECT_NEAR(line->offset / line->normalY, 150, 16);
    EXPECT_FALSE(scaleOf(stones(14)).grounds().has_value());
    EXPECT_FALSE(scaleOf(checks(24)).grounds().has_value());
    EXPECT_FALSE(scaleOf(sky).grounds().has_value());
}

TEST(TextureScaleTest, LikensBoxesToTheSurroundings)
{
    const TextureScale one =
        scaleOf([](int x, int y) { return x < 60 ? checks(7)(x, y) : stones(14)(x, y); });
    const OfxRectI alike{230, 10, 310, 90}, other{0, 10, 56, 90};
    EXPECT_GT(one.likeness(alike), 0.7);
    EXPECT_LT(one.likeness(other), 0.6 * one.likeness(alike));
    EXPECT_EQ(one.likeness({400, 400, 500, 500}), 0);

    const TextureScale two = scaleOf(skyOverStones(160));
    ASSERT_TRUE(two.grounds().has_value());
    const OfxRectI ground{0, 0, 320, 100}, sky{0, 220, 320, 320};
    const int groundIs = two.grounds()->normalY > 0 ? 0 : 1;
    EXPECT_GT(two.likeness(ground, groundIs), 2 * two.likeness(sky, groundIs));
    EXPECT_GT(two.likeness(sky, 1 - groundIs), 2 * two.likeness(ground, 1 - groundIs));
}

}  // namespace
}  // namespace Tesseret::Quality
