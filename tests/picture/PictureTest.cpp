#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/ClipSource.h"
#include "picture/Picture.h"
#include "tests/fixtures/TestHost.h"

namespace Tesseret {
namespace {

using Fixtures::samePixels;
using Fixtures::texturePicture;

TEST(PictureTest, AddressesEveryPixelOfEveryRowLayout)
{
    const OfxRectI bounds{-3, -2, 4, 3};
    const auto plain = texturePicture(bounds, Depth::Short, 5);
    for (const RowLayout layout :
         {RowLayout{false, 0}, RowLayout{true, 0}, RowLayout{false, 6}, RowLayout{true, 6}}) {
        Picture picture = plain->copied(bounds, layout, 0xFF);
        EXPECT_TRUE(samePixels(*plain, picture));
        const std::ptrdiff_t row = 7 * 8 + static_cast<std::ptrdiff_t>(layout.padding);
        EXPECT_EQ(picture.rowBytes(), layout.topDown ? -row : row);
        EXPECT_EQ(picture.data(), picture.pixel<std::byte>(-3, -2));
        EXPECT_EQ(picture.row(-1) - picture.row(-2), picture.rowBytes());
        picture.setChannel(3, 2, 3, 1234.0);  // the last pixel's last channel is in the storage
        EXPECT_EQ(picture.channel(3, 2, 3), 1234.0);
        EXPECT_EQ(picture.storageBytes(), static_cast<std::size_t>(5 * row));
    }
}

TEST(PictureTest, FillsWhatACopyOverOtherBoundsLacks)
{
    const auto plain = texturePicture({0, 0, 4, 4}, Depth::Byte, 2);
    const Picture moved = plain->copied({2, -1, 6, 2}, {}, 0xA5);
    for (int y = -1; y < 2; ++y) {
        for (int x = 2; x < 6; ++x) {
            const double expected = plain->contains(x, y) ? plain->channel(x, y, 1) : 0xA5;
            EXPECT_EQ(moved.channel(x, y, 1), expected) << x << ", " << y;
        }
    }
    EXPECT_EQ(moved.regionOfDefinition().x1, 0);  // the region of definition is unchanged
}

TEST(PictureTest, ConvertsFullScaleToFullScale)
{
    Picture bytes({0, 0, 3, 1}, Depth::Byte, Components::RGB);
    for (int x = 0; x < 3; ++x) bytes.setChannel(x, 0, 0, x * 127.5);
    const Picture shorts = bytes.converted(Depth::Short, Components::RGBA);
    EXPECT_EQ(shorts.channel(1, 0, 0), 127 * 257);
    EXPECT_EQ(shorts.channel(2, 0, 0), 65535);
    EXPECT_EQ(shorts.channel(0, 0, 3), 65535);  // no alpha becomes full alpha
    EXPECT_TRUE(samePixels(shorts.converted(Depth::Byte, Components::RGB), bytes));
    EXPECT_EQ(bytes.converted(Depth::Float, Components::Alpha).channel(0, 0, 0), 1.0);

    Picture floats({0, 0, 4, 1}, Depth::Float, Components::Alpha);
    const float values[] = {-0.5f, 1.5f, 0.5f, std::numeric_limits<float>::quiet_NaN()};
    const double expected[] = {0, 255, 128, 0};
    for (int x = 0; x < 4; ++x) floats.pixel<float>(x, 0)[0] = values[x];
    const Picture rounded = floats.converted(Depth::Byte, Components::RGBA);
    for (int x = 0; x < 4; ++x) {
        EXPECT_EQ(rounded.channel(x, 0, 3), expected[x]) << values[x];
        EXPECT_EQ(rounded.channel(x, 0, 0), 0.0);
    }
}

TEST(PictureTest, RefusesWhatCannotBeHeld)
{
    const int most = std::numeric_limits<int>::max();
    EXPECT_THROW(Picture({-most, 0, most, 1}, Depth::Byte), PictureError);
    EXPECT_THROW(Picture({0, 0, most, 1}, Depth::Byte), PictureError);  // row bytes are an int
    EXPECT_EQ(Picture({5, 5, 2, 9}, Depth::Float).storageBytes(), 0u);
    Picture bytes({0, 0, 2, 2}, Depth::Byte);
    EXPECT_THROW(bytes.paste(Picture({0, 0, 2, 2}, Depth::Short)), PictureError);
}

TEST(PictureTest, CoversCanonicalRectanglesWithPixels)
{
    const auto pixels = [](OfxRectD rect, OfxPointD scale, double ratio) {
        const OfxRectI p = toPixels(rect, scale, ratio);
        return std::vector<int>{p.x1, p.y1, p.x2, p.y2};
    };
    using ::testing::ElementsAre;
    EXPECT_THAT(pixels({0, 0, 10, 10}, {0.5, 0.5}, 2.0), ElementsAre(0, 0, 3, 5));
    EXPECT_THAT(pixels({-0.1, 0.0, 0.1, 1.0 / 3.0 * 3.0}, {1, 1}, 1.0), ElementsAre(-1, 0, 1, 1));
    EXPECT_THAT(pixels({double(kOfxFlagInfiniteMin), 0, double(kOfxFlagInfiniteMax), 1e12},
                       {0.5, 0.5}, 1.0),
                ElementsAre(kOfxFlagInfiniteMin, 0, kOfxFlagInfiniteMax, kOfxFlagInfiniteMax));
}

TEST(StillSourceTest, GivesTheNearestPixelsOfASmallerScale)
{
    const auto picture = texturePicture({-4, 0, 4, 6}, Depth::Byte, 3);
    Host::StillSource source(picture, {1.0, 3.0});
    EXPECT_EQ(source.picture(0.0, {1.0, 1.0}), nullptr);
    EXPECT_EQ(source.picture(2.0, {1.0, 1.0}), picture);
    const auto half = source.picture(2.0, {0.5, 0.5});
    ASSERT_NE(half, nullptr);
    EXPECT_EQ(half->bounds().x1, -2);
    EXPECT_EQ(half->bounds().y2, 3);
    EXPECT_EQ(half->channel(-2, 0, 0), picture->channel(-3, 1, 0));
    EXPECT_EQ(half->channel(1, 2, 2), picture->channel(3, 5, 2));
}

}  // namespace
}  // namespace Tesseret
