#include <limits>

#include <gtest/gtest.h>

#include "products/OFX/Support/Image.h"

namespace Orvane {
namespace {

constexpr int kMin = std::numeric_limits<int>::min();
constexpr int kMax = std::numeric_limits<int>::max();

TEST(ImageAxis, ChoosesItsExtentAndKeepsToStoredPixels)
{
    struct Case {
        const char* what;
        int defined[2];
        int stored[2];
        OvImageAxis axis;
    };
    const Case cases[] = {
        {"stored as defined", {10, 20}, {10, 20}, {10, 10, 0, 9, 0}},
        {"stored in part", {-10, 20}, {-4, 6}, {-10, 30, 6, 15, 0}},
        {"stored beyond", {10, 20}, {4, 32}, {10, 10, 0, 9, 6}},
        {"stored from before into it", {10, 20}, {4, 15}, {10, 10, 0, 4, 6}},
        {"one pixel in common", {10, 20}, {19, 40}, {10, 10, 9, 9, 0}},
        {"infinite below", {kMin, 20}, {4, 15}, {4, 11, 0, 10, 0}},
        {"infinite above", {10, kMax}, {4, 15}, {4, 11, 0, 10, 0}},
        {"empty definition", {7, 7}, {4, 15}, {4, 11, 0, 10, 0}},
        {"an extent that no int holds", {-2000000000, 2000000000}, {4, 15}, {4, 11, 0, 10, 0}},
        {"the longest extent", {-2, kMax - 2}, {4, 15}, {-2, kMax, 6, 16, 0}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.what);
        const OvImageAxis axis =
            imageAxis(each.defined[0], each.defined[1], each.stored[0], each.stored[1]);
        EXPECT_EQ(axis.origin, each.axis.origin);
        EXPECT_EQ(axis.size, each.axis.size);
        EXPECT_EQ(axis.storeFirst, each.axis.storeFirst);
        EXPECT_EQ(axis.storeLast, each.axis.storeLast);
        EXPECT_EQ(axis.skipped, each.axis.skipped);
        EXPECT_FALSE(axis.isEmpty());
    }
}

TEST(ImageAxis, IsEmptyWithoutAPixelToRead)
{
    struct Case {
        const char* what;
        int defined[2];
        int stored[2];
    };
    const Case cases[] = {
        {"stored before", {10, 20}, {0, 10}},
        {"stored behind", {10, 20}, {20, 30}},
        {"nothing stored", {10, 20}, {15, 15}},
        {"stored backwards", {10, 20}, {18, 12}},
        {"defined backwards", {20, 10}, {0, 30}},
        {"nothing known", {0, 0}, {0, 0}},
        {"infinite, nothing stored", {kMin, kMax}, {3, 3}},
        {"stored in more than an int holds", {kMin, kMax}, {kMin, kMax}},
        {"begins more than an int before", {kMax - 10, kMax - 1}, {kMin, kMax}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.what);
        const OvImageAxis axis =
            imageAxis(each.defined[0], each.defined[1], each.stored[0], each.stored[1]);
        EXPECT_TRUE(axis.isEmpty());
        EXPECT_EQ(axis.size, 0);
    }
}

}  // namespace
}  // namespace Orvane
