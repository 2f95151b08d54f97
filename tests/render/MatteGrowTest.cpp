#include <algorithm>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "render/MatteGrow.h"

namespace Tesseret::Render {
namespace {

double fullOf(Depth depth)
{
    return depth == Depth::Byte ? 255 : depth == Depth::Short ? 65535 : 1;
}

/// Some soft spots on an unmasked ground, with a NaN where there can be one.
Picture spots(const OfxRectI& bounds, Depth depth, Polarity polarity, unsigned int seed)
{
    Picture matte(bounds, depth, Components::Alpha);
    std::mt19937 random(seed);
    for (int y = bounds.y1; y < bounds.y2; ++y) {
        for (int x = bounds.x1; x < bounds.x2; ++x) {
            const unsigned int draw = random() % 256;
            const double strength = random() % 12 == 0 ? draw / 255.0 * fullOf(depth) : 0.0;
            matte.setChannel(x, y, 0,
                             polarity == Polarity::White ? strength : fullOf(depth) - strength);
        }
    }
    if (depth == Depth::Float) {
        matte.setChannel(bounds.x1, bounds.y1, 0, std::numeric_limits<double>::quiet_NaN());
    }
    return matte;
}

/// 0 outside and for NaN.
double strengthAt(const Picture& matte, int x, int y, Polarity polarity)
{
    if (!matte.contains(x, y)) return 0.0;
    const double value = matte.channel(x, y, 0);
    const double strength = polarity == Polarity::White ? value : fullOf(matte.depth()) - value;
    return strength > 0.0 ? strength : 0.0;
}

double strongestNear(const Picture& matte, int x, int y, double radius, Polarity polarity)
{
    double strongest = 0.0;
    for (int dy = -20; dy <= 20; ++dy) {
        for (int dx = -20; dx <= 20; ++dx) {
            if (dx * dx + dy * dy > radius * radius) continue;
            strongest = std::max(strongest, strengthAt(matte, x + dx, y + dy, polarity));
        }
    }
    return strongest;
}

TEST(MatteGrowTest, IsTheStrongestOfTheDisc)
{
    const OfxRectI bounds{5, -3, 35, 17};
    const OfxRectI frame{0, 0, 60, 20};
    for (const Depth depth : {Depth::Byte, Depth::Short, Depth::Float}) {
        for (const Polarity polarity : {Polarity::White, Polarity::Black}) {
            for (const double radius : {0.0, 0.9, 1.0, 1.5, 2.0, 4.7, 5.0, 13.0, 20.0}) {
                SCOPED_TRACE(radius);
                const Picture matte = spots(bounds, depth, polarity, 3);
                const Picture grown = grownMatte(matte, radius, polarity, frame);
                const int by = static_cast<int>(radius);
                // As far as the disc and the frame go, but never smaller than it was.
                EXPECT_EQ(grown.bounds().x1, std::max(5 - by, 0));
                EXPECT_EQ(grown.bounds().x2, 35 + by);
                EXPECT_EQ(grown.bounds().y1, -3);
                EXPECT_EQ(grown.bounds().y2, std::min(17 + by, 20));
                for (int y = grown.bounds().y1; y < grown.bounds().y2; ++y) {
                    for (int x = grown.bounds().x1; x < grown.bounds().x2; ++x) {
                        const double wanted = strongestNear(matte, x, y, radius, polarity);
                        ASSERT_NEAR(strengthAt(grown, x, y, polarity), wanted, 1e-7)
                            << x << ' ' << y;
                    }
                }
            }
        }
    }
}

TEST(MatteGrowTest, NothingGrowsToNothing)
{
    const Picture empty({0, 0, 9, 9}, Depth::Byte, Components::Alpha);
    const Picture grown = grownMatte(empty, 1000.0, Polarity::White, {0, 0, 9, 9});
    EXPECT_EQ(grown.width(), 9);
    EXPECT_EQ(strongestNear(grown, 4, 4, 9.0, Polarity::White), 0.0);
}

}  // namespace
}  // namespace Tesseret::Render
