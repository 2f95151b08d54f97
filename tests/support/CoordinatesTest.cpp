#include <gtest/gtest.h>

#include "products/OFX/Support/Coordinates.h"

namespace Orvane {
namespace {

using enum OvDoubleType;

constexpr OvProject kProject = {.size = {1920.0f, 1080.0f}, .offset = {-10.0f, 20.0f}};

TEST(Coordinates, OfNumbersAreMeasuredAgainstTheProject)
{
    struct Case {
        OvDoubleType type;
        double canonical;  // of 0.5
    };
    for (const Case& each :
         {Case{NormalisedX, 960.0}, Case{NormalisedY, 540.0}, Case{NormalisedXAbsolute, 950.0},
          Case{NormalisedYAbsolute, 560.0}, Case{Plain, 0.5}, Case{Angle, 0.5},
          Case{AbsoluteTime, 0.5}, Case{NormalisedXYAbsolute, 0.5}}) {
        SCOPED_TRACE(static_cast<int>(each.type));
        EXPECT_EQ(normalisedToCanonical(0.5, each.type, kProject), each.canonical);
        EXPECT_EQ(canonicalToNormalised(each.canonical, each.type, kProject), 0.5);
    }
    // Numbers stay double: a float would lose the last digits.
    EXPECT_EQ(normalisedToCanonical(0.1, NormalisedX, kProject), 0.1 * 1920.0);
}

TEST(Coordinates, OfPositionsAreScaledToPixels)
{
    struct Case {
        OvDoubleType type;
        OvPoint scale;
        OvPoint pixels;  // of (0.5, 0.5)
    };
    for (const Case& each :
         {Case{NormalisedXY, {0.5f, 0.5f}, {480.0f, 270.0f}},
          Case{NormalisedXY, {0.25f, 1.0f}, {240.0f, 540.0f}},
          Case{NormalisedXYAbsolute, {0.5f, 0.5f}, {475.0f, 280.0f}},
          Case{NormalisedXYAbsolute, {0.25f, 0.5f}, {237.5f, 280.0f}},
          Case{Scale, {0.5f, 0.5f}, {0.5f, 0.5f}}, Case{NormalisedX, {0.5f, 0.5f}, {0.5f, 0.5f}}}) {
        SCOPED_TRACE(static_cast<int>(each.type));
        EXPECT_EQ(normalisedToPixels({0.5f, 0.5f}, each.type, kProject, each.scale), each.pixels);
        EXPECT_EQ(pixelsToNormalised(each.pixels, each.type, kProject, each.scale),
                  (OvPoint{0.5f, 0.5f}));
    }
}

TEST(Coordinates, OfRectanglesGoBackThroughTheAspectRatio)
{
    const OvRect pixels = {.xMin = -4.0f, .xMax = 8.0f, .yMin = 1.0f, .yMax = 5.0f};
    EXPECT_EQ(pixelsToCanonical(pixels, {0.5f, 0.25f}, 2.0),
              (OvRect{.xMin = -16.0f, .xMax = 32.0f, .yMin = 4.0f, .yMax = 20.0f}));
    EXPECT_EQ(canonicalToPixels({32.0f, 20.0f}, {0.5f, 0.25f}, 2.0), (OvPoint{8.0f, 5.0f}));
}

}  // namespace
}  // namespace Orvane
