#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "viewer/model/DisplayPixels.h"

namespace Tesseret::Viewer {
namespace {

using testing::ElementsAre;

/// One pixel of equal colours and an alpha of a half.
Picture pixel(Depth depth, double value)
{
    Picture picture({0, 0, 1, 1}, depth);
    for (int c = 0; c < 3; ++c) picture.setChannel(0, 0, c, value);
    picture.setChannel(0, 0, 3, 0.5);
    return picture;
}

int shown(Depth depth, double value)
{
    return displayPixels(pixel(depth, value), {0, 0, 1, 1}).front();
}

TEST(DisplayPixelsTest, IntegersAreShownAsTheyAre)
{
    EXPECT_EQ(shown(Depth::Byte, 200), 200);
    for (const int value : {0, 1, 128, 254, 255})
        EXPECT_EQ(shown(Depth::Short, value * 257), value);
    EXPECT_EQ(shown(Depth::Short, 128), 0);  // nearest
    EXPECT_EQ(shown(Depth::Short, 129), 1);
}

TEST(DisplayPixelsTest, FloatsGoThroughTheCurve)
{
    EXPECT_EQ(shown(Depth::Float, 0.0), 0);
    EXPECT_EQ(shown(Depth::Float, 0.002), 7);  // 12.92 * 0.002 * 255 = 6.6
    EXPECT_EQ(shown(Depth::Float, 0.18), 118);
    EXPECT_EQ(shown(Depth::Float, 0.5), 188);
    EXPECT_EQ(shown(Depth::Float, 1.0), 255);
    EXPECT_EQ(shown(Depth::Float, 40.0), 255);
    EXPECT_EQ(shown(Depth::Float, -1.0), 0);
    EXPECT_EQ(shown(Depth::Float, std::numeric_limits<double>::quiet_NaN()), 0);
    EXPECT_EQ(shown(Depth::Float, std::numeric_limits<double>::infinity()), 255);
}

TEST(DisplayPixelsTest, TakesThePartFromTheLowestRowUpWithoutAlpha)
{
    Picture picture({10, 20, 13, 22}, Depth::Byte, Components::RGBA, {.topDown = true});
    for (int y = 20; y < 22; ++y) {
        for (int x = 10; x < 13; ++x) {
            picture.setChannel(x, y, 0, x);
            picture.setChannel(x, y, 1, y);
        }
    }
    EXPECT_THAT(displayPixels(picture, {11, 20, 13, 22}),
                ElementsAre(11, 20, 0, 255, 12, 20, 0, 255, 11, 21, 0, 255, 12, 21, 0, 255));
    EXPECT_TRUE(displayPixels(picture, {11, 20, 11, 22}).empty());
}

TEST(DisplayPixelsTest, AlphaAloneIsGrey)
{
    Picture matte({0, 0, 1, 1}, Depth::Byte, Components::Alpha);
    matte.setChannel(0, 0, 0, 77);
    EXPECT_THAT(displayPixels(matte, {0, 0, 1, 1}), ElementsAre(77, 77, 77, 255));
}

}  // namespace
}  // namespace Tesseret::Viewer
