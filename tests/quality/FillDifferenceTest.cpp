#include <gtest/gtest.h>

#include "quality/FillDifference.h"
#include "tests/quality/DrawnTextures.h"

namespace Tesseret::Quality {
namespace {

using namespace Testing;

/// All of kArea.
Picture areaPixels()
{
    Picture pixels(kArea, Depth::Byte, Components::Alpha);
    for (int y = kArea.y1; y < kArea.y2; ++y) {
        for (int x = kArea.x1; x < kArea.x2; ++x) *pixels.pixel<std::uint8_t>(x, y) = 255;
    }
    return pixels;
}

class FillDifferenceTest : public ::testing::TestWithParam<Depth> {
protected:
    Picture fill(const Tone& tone) const
    {
        return drawn(tone).converted(GetParam(), Components::RGBA);
    }
    double between(const Tone& a, const Tone& b) const
    {
        const FillDifference difference(fill(stones(14)), lostBox(), areaPixels());
        return difference.between(difference.look(fill(a)), difference.look(fill(b)));
    }
};

TEST_P(FillDifferenceTest, IsTheShareThatLooksDifferent)
{
    const Tone ground = stones(14);
    EXPECT_EQ(between(ground, ground), 0.0);
    const Tone brightHalf = [&](int x, int y) {
        return ground(x, y) + (x >= (kArea.x1 + kArea.x2) / 2 ? 40.0 : 0.0);
    };
    EXPECT_NEAR(between(ground, brightHalf), 0.5, 0.03);
    const Tone outside = [&](int x, int y) { return ground(x, y) + (x > kArea.x2 + 4 ? 40.0 : 0); };
    EXPECT_EQ(between(ground, outside), 0.0);
}

TEST_P(FillDifferenceTest, PassesOverGrainButNotOverOtherStones)
{
    const Tone grainy = [](int x, int y) { return stones(14)(x, y) + 12 * hashed(x, y, 77); };
    EXPECT_LT(between(stones(14), grainy), kOtherPicture / 3);
    const Tone shifted = [](int x, int y) { return stones(14)(x + 40, y + 25); };
    EXPECT_GT(between(stones(14), shifted), kOtherPicture);
}

INSTANTIATE_TEST_SUITE_P(Depths, FillDifferenceTest,
                         ::testing::Values(Depth::Byte, Depth::Short, Depth::Float));

}  // namespace
}  // namespace Tesseret::Quality
