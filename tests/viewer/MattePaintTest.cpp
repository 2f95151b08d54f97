#include <cmath>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "viewer/model/MatteBrush.h"
#include "viewer/model/MatteOutline.h"
#include "viewer/model/MatteShapes.h"

namespace Tesseret::Viewer {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

bool operator==(const OfxRectI& a, const OfxRectI& b)
{
    return a.x1 == b.x1 && a.y1 == b.y1 && a.x2 == b.x2 && a.y2 == b.y2;
}

int at(const MattePaint& paint, int x, int y)
{
    return *paint.picture().pixel<std::uint8_t>(x, y);
}

/// The rows from the highest down: '.' unmasked, '#' full, '+' between.
std::vector<std::string> drawing(const MattePaint& paint)
{
    const OfxRectI all = paint.bounds();
    std::vector<std::string> rows;
    for (int y = all.y2 - 1; y >= all.y1; --y) {
        std::string row;
        for (int x = all.x1; x < all.x2; ++x) {
            const int value = at(paint, x, y);
            row += value == 0 ? '.' : value == 255 ? '#' : '+';
        }
        rows.push_back(row);
    }
    return rows;
}

std::vector<std::uint8_t> bytes(const MattePaint& paint)
{
    std::vector<std::uint8_t> all;
    for (int y = paint.bounds().y1; y < paint.bounds().y2; ++y) {
        const auto* const row = paint.picture().pixel<std::uint8_t>(paint.bounds().x1, y);
        all.insert(all.end(), row, row + paint.picture().width());
    }
    return all;
}

template <typename Work>
MattePatch step(MattePaint& paint, const Work& work)
{
    paint.begin();
    work();
    return paint.end();
}

TEST(MatteBrush, AHardBrushTakesThePixelsWhoseCentresItCovers)
{
    MattePaint paint({0, 0, 7, 5});
    drawStroke(paint, {.size = 4.0, .softness = 0.0}, {2.0, 2.0}, {4.0, 2.0}, false);
    EXPECT_THAT(drawing(paint), ElementsAre(".......", ".####..", "######.", "######.", ".####.."));
}

TEST(MatteBrush, TheSmallestBrushPaintsWhereverItIs)
{
    for (const OfxPointD place :
         {OfxPointD{2.0, 2.0}, OfxPointD{2.5, 2.5}, OfxPointD{2.99, 2.01}}) {
        MattePaint paint({0, 0, 5, 5});
        drawStroke(paint, {.size = Brush::kMinSize, .softness = 1.0}, place, place, false);
        EXPECT_GT(at(paint, 2, 2), 0);
    }
}

TEST(MatteBrush, ASoftBrushFadesFromItsHardPartToItsRim)
{
    const Brush brush{.size = 40.0, .softness = 0.5};
    EXPECT_EQ(brush.strengthAt(0.0), 255);
    EXPECT_EQ(brush.strengthAt(10.0), 255);
    EXPECT_EQ(brush.strengthAt(15.0), 128);
    EXPECT_EQ(brush.strengthAt(20.0), 0);
    for (int step = 0; step < 84; ++step) {
        const double d = 0.25 * step;
        EXPECT_GE(brush.strengthAt(d), brush.strengthAt(d + 0.25)) << d;
    }
    MattePaint paint({0, 0, 60, 60});
    drawStroke(paint, brush, {30.5, 30.5}, {30.5, 30.5}, false);
    for (const auto& [x, y] : {std::pair{45, 30}, {30, 15}, {42, 39}, {30, 49}, {30, 51}}) {
        EXPECT_EQ(at(paint, x, y), brush.strengthAt(std::hypot(x - 30, y - 30))) << x << "," << y;
    }
}

TEST(MatteBrush, PartsOfAStrokeMayComeInAnyOrderAndOften)
{
    const Brush brush{.size = 9.0, .softness = 0.8};
    const std::vector<OfxPointD> way{{5.2, 5.1}, {20.7, 9.3}, {11.0, 26.4}};
    MattePaint once({0, 0, 32, 32}), other({0, 0, 32, 32});
    for (std::size_t i = 0; i + 1 < way.size(); ++i) {
        drawStroke(once, brush, way[i], way[i + 1], false);
    }
    for (const std::size_t i : {1, 0, 1, 1}) {
        drawStroke(other, brush, way[i + 1], way[i], false);
        drawStroke(other, brush, way[i], way[i + 1], false);
    }
    EXPECT_EQ(bytes(once), bytes(other));
}

TEST(MatteBrush, TheEraserTakesAwayWhatTheBrushPaints)
{
    const Brush brush{.size = 12.0, .softness = 0.0};
    MattePaint paint({0, 0, 32, 32});
    drawStroke(paint, brush, {8, 8}, {20, 24}, false);
    drawStroke(paint, brush, {8, 8}, {20, 24}, true);
    EXPECT_TRUE(isEmpty(paint.maskedBox()));
    const Brush soft{.size = 12.0, .softness = 1.0};
    fillRectangle(paint, {0, 0}, {32, 32}, false);
    drawStroke(paint, soft, {16.5, 16.5}, {16.5, 16.5}, true);
    EXPECT_EQ(at(paint, 16, 16), 0);
    EXPECT_EQ(at(paint, 19, 16), 255 - soft.strengthAt(3.0));
}

TEST(MatteBrush, BeyondThePictureNothingIsPainted)
{
    MattePaint paint({-3, -2, 5, 4});
    const Brush brush{.size = 4.0, .softness = 0.0};
    drawStroke(paint, brush, {-3.0, -2.0}, {-3.0, -2.0}, false);
    EXPECT_TRUE(paint.maskedBox() == (OfxRectI{-3, -2, -1, 0}));
    drawStroke(paint, brush, {100.0, 100.0}, {200.0, 100.0}, false);
    EXPECT_TRUE(paint.maskedBox() == (OfxRectI{-3, -2, -1, 0}));
}

TEST(MatteShapes, ARectangleHasThePixelsWhoseCentresItHolds)
{
    MattePaint paint({0, 0, 6, 4});
    fillRectangle(paint, {4.5, 3.4}, {0.51, 0.5}, false);  // from any corner
    EXPECT_THAT(drawing(paint), ElementsAre("......", ".###..", ".###..", ".###.."));
    fillRectangle(paint, {2.0, 1.0}, {3.0, 9.0}, true);
    EXPECT_THAT(drawing(paint), ElementsAre("......", ".#.#..", ".#.#..", ".###.."));
}

TEST(MatteShapes, PolygonsWithACommonEdgeShareNoPixelAndLeaveNoneOut)
{
    const std::vector<OfxPointD> corners{{1, 1}, {29, 2}, {30, 27.5}, {3.5, 30}};
    const OfxPointD middle{14.5, 15.5};  // on a pixel's centre
    MattePaint whole({0, 0, 32, 32});
    fillPolygon(whole, corners, false);
    std::vector<int> sum(32 * 32);
    for (std::size_t i = 0; i < corners.size(); ++i) {
        MattePaint part({0, 0, 32, 32});
        fillPolygon(part, std::vector{corners[i], corners[(i + 1) % 4], middle}, false);
        for (std::size_t k = 0; k < sum.size(); ++k) sum[k] += bytes(part)[k];
    }
    for (std::size_t k = 0; k < sum.size(); ++k) ASSERT_EQ(sum[k], bytes(whole)[k]) << k;
}

TEST(MatteShapes, WhereAnOutlineCrossesItselfTheEvenOddRuleDecides)
{
    MattePaint paint({0, 0, 9, 5});
    // Twice round the inner square, and a bow.
    fillPolygon(paint,
                std::vector<OfxPointD>{
                    {0, 0}, {5, 0}, {5, 5}, {0, 5}, {0, 0}, {1, 1}, {4, 1}, {4, 4}, {1, 4}, {1, 1}},
                false);
    EXPECT_THAT(drawing(paint),
                ElementsAre("#####....", "#...#....", "#...#....", "#...#....", "#####...."));
    clearMatte(paint);
    fillPolygon(paint, std::vector<OfxPointD>{{0, 0}, {9, 5}, {9, 0}, {0, 5}}, false);
    EXPECT_EQ(drawing(paint)[0], "#.......#");
    EXPECT_EQ(drawing(paint)[2], "#########");
    clearMatte(paint);
    fillPolygon(paint, std::vector<OfxPointD>{{0, 0}, {9, 5}}, false);
    EXPECT_TRUE(isEmpty(paint.maskedBox())) << "a line has no inside";
}

TEST(MatteShapes, AHugeLassoIsClippedAtThePicture)
{
    MattePaint paint({0, 0, 4, 3});
    fillPolygon(paint, std::vector<OfxPointD>{{-1e12, -1e12}, {1e12, -1e12}, {0.0, 1e12}}, false);
    EXPECT_THAT(drawing(paint), ElementsAre("####", "####", "####"));
}

TEST(MatteShapes, FillsWhatAStrokeEncloses)
{
    MattePaint paint({0, 0, 9, 7});
    fillRectangle(paint, {1, 1}, {8, 6}, false);
    fillRectangle(paint, {2, 2}, {7, 5}, true);
    EXPECT_FALSE(fillEnclosed(paint, {0.5, 0.5})) << "outside";
    EXPECT_FALSE(fillEnclosed(paint, {1.5, 1.5})) << "on the stroke";
    EXPECT_FALSE(fillEnclosed(paint, {-3.0, 99.0})) << "off the picture";
    EXPECT_TRUE(fillEnclosed(paint, {4.2, 3.9}));
    EXPECT_THAT(drawing(paint), ElementsAre(".........", ".#######.", ".#######.", ".#######.",
                                            ".#######.", ".#######.", "........."));
    fillRectangle(paint, {2, 2}, {7, 5}, true);
    fillRectangle(paint, {1, 3}, {2, 4}, true);
    EXPECT_FALSE(fillEnclosed(paint, {4.0, 3.0})) << "the stroke has a gap";
    fillRectangle(paint, {1, 3}, {2, 4}, false);
    fillRectangle(paint, {1, 1}, {2, 2}, true);
    EXPECT_TRUE(fillEnclosed(paint, {4.0, 3.0})) << "a gap at a corner is none";
}

TEST(MatteShapes, GrowingTakesADiscAndShrinkingUndoesItWhereNothingWasCutOff)
{
    MattePaint paint({0, 0, 64, 48});
    fillRectangle(paint, {20, 15}, {40, 30}, false);
    const std::vector<std::uint8_t> before = bytes(paint);
    growMatte(paint, 3.0);
    EXPECT_TRUE(paint.maskedBox() == (OfxRectI{17, 12, 43, 33}));
    EXPECT_EQ(at(paint, 17, 12), 0) << "corners are round";
    EXPECT_EQ(at(paint, 18, 13), 255) << "two across and two down lie within three";
    shrinkMatte(paint, 3.0);
    EXPECT_EQ(bytes(paint), before) << "a rectangle away from the edge comes back";

    shrinkMatte(paint, 4.0);
    EXPECT_TRUE(paint.maskedBox() == (OfxRectI{24, 19, 36, 26}));
    growMatte(paint, 4.0);
    EXPECT_TRUE(paint.maskedBox() == (OfxRectI{20, 15, 40, 30}));
    EXPECT_EQ(at(paint, 20, 15), 0) << "its corners do not";
    shrinkMatte(paint, 100.0);
    EXPECT_TRUE(isEmpty(paint.maskedBox()));
    growMatte(paint, 5.0);
    EXPECT_TRUE(isEmpty(paint.maskedBox()));
}

TEST(MatteShapes, ShrinkingLeavesWhatLiesAtThePicturesEdge)
{
    MattePaint paint({0, 0, 20, 10});
    fillRectangle(paint, {0, 0}, {10, 10}, false);
    shrinkMatte(paint, 2.0);
    EXPECT_TRUE(paint.maskedBox() == (OfxRectI{0, 0, 8, 10}));
    fillRectangle(paint, {0, 0}, {20, 10}, false);
    shrinkMatte(paint, 2.0);
    EXPECT_TRUE(paint.maskedBox() == (OfxRectI{0, 0, 20, 10}));
}

TEST(MatteShapes, SoftRimsMoveUnchanged)
{
    MattePaint paint({0, 0, 40, 40});
    drawStroke(paint, {.size = 16.0, .softness = 1.0}, {20.5, 20.5}, {20.5, 20.5}, false);
    const int before = at(paint, 25, 20);
    growMatte(paint, 4.0);
    EXPECT_EQ(at(paint, 29, 20), before);
    shrinkMatte(paint, 4.0);
    EXPECT_EQ(at(paint, 25, 20), before);
}

TEST(MattePaint, GoesBackAndForthOverManyStrokes)
{
    MattePaint paint({0, 0, 300, 200});
    std::vector<std::vector<std::uint8_t>> states{bytes(paint)};
    std::vector<MattePatch> patches;
    unsigned int random = 7;
    const auto next = [&random](int end) {
        random = random * 1664525u + 1013904223u;
        return int((random >> 8) % unsigned(end));
    };
    for (int i = 0; i < 60; ++i) {
        const bool erases = next(3) == 0;
        const Brush brush{.size = 2.0 + next(60), .softness = next(11) / 10.0};
        const OfxPointD from{double(next(340) - 20), double(next(240) - 20)};
        const OfxPointD to{double(next(340) - 20), double(next(240) - 20)};
        patches.push_back(step(paint, [&] {
            if (i % 7 == 6) return growMatte(paint, next(5));
            if (i % 7 == 5) return shrinkMatte(paint, next(5));
            if (i % 7 == 4) return fillRectangle(paint, from, to, erases);
            drawStroke(paint, brush, from, to, erases);
        }));
        states.push_back(bytes(paint));
    }
    const std::uint64_t last = paint.revision();
    for (std::size_t i = patches.size(); i-- > 0;) {
        paint.swap(patches[i]);
        ASSERT_EQ(bytes(paint), states[i]) << i;
    }
    EXPECT_EQ(paint.revision(), 0u);
    for (std::size_t i = 0; i < patches.size(); ++i) {
        paint.swap(patches[i]);
        ASSERT_EQ(bytes(paint), states[i + 1]) << i;
    }
    EXPECT_EQ(paint.revision(), last);
}

TEST(MattePaint, AStepKeepsOnlyWhatItTouches)
{
    MattePaint paint({0, 0, 4000, 3000});
    paint.takeTouched();
    const MattePatch dot = step(paint, [&] {
        drawStroke(paint, {.size = 10.0, .softness = 0.0}, {1000, 1000}, {1000, 1000}, false);
    });
    EXPECT_LE(dot.bytes(), 4u * 64 * 64);
    EXPECT_TRUE(paint.takeTouched() == (OfxRectI{995, 995, 1005, 1005}));
    EXPECT_TRUE(isEmpty(paint.takeTouched()));
    const std::uint64_t revision = paint.revision();
    const MattePatch again = step(paint, [&] {
        drawStroke(paint, {.size = 10.0, .softness = 0.0}, {1000, 1000}, {1000, 1000}, false);
    });
    EXPECT_TRUE(again.empty()) << "painting over paint changes nothing";
    EXPECT_EQ(paint.revision(), revision);
}

std::vector<std::string> lines(const MatteOutline& outline)
{
    std::vector<std::string> all;
    outline.forEach([&](const MatteOutline::Line& line) {
        all.push_back(std::to_string(line.from.x) + "," + std::to_string(line.from.y) + "-" +
                      std::to_string(line.to.x) + "," + std::to_string(line.to.y));
    });
    return all;
}

TEST(MatteOutline, RunsAlongTheSidesOfMaskedPixels)
{
    MattePaint paint({0, 0, 6, 5});
    MatteOutline outline;
    outline.update(paint.picture(), paint.takeTouched());
    EXPECT_THAT(lines(outline), testing::IsEmpty());
    fillRectangle(paint, {1, 1}, {3, 3}, false);
    outline.update(paint.picture(), paint.takeTouched());
    EXPECT_THAT(lines(outline), UnorderedElementsAre("1,1-3,1", "1,3-3,3", "1,1-1,3", "3,1-3,3"));
    fillRectangle(paint, {0, 0}, {6, 5}, false);
    outline.update(paint.picture(), paint.takeTouched());
    EXPECT_THAT(lines(outline), UnorderedElementsAre("0,0-6,0", "0,5-6,5", "0,0-0,5", "6,0-6,5"));
}

TEST(MatteOutline, FollowsStrokesAcrossItsTiles)
{
    MattePaint paint({0, 0, 700, 600});
    MatteOutline followed;
    followed.update(paint.picture(), paint.takeTouched());
    const Brush brush{.size = 31.0, .softness = 0.5};
    for (const auto& [from, to] : {std::pair{OfxPointD{10, 10}, OfxPointD{690, 590}},
                                   {{256, 100}, {256, 500}},
                                   {{0, 256}, {512, 256}}}) {
        drawStroke(paint, brush, from, to, false);
        followed.update(paint.picture(), paint.takeTouched());
    }
    drawStroke(paint, brush, {256, 256}, {512, 512}, true);
    followed.update(paint.picture(), paint.takeTouched());
    MatteOutline made;
    made.update(paint.picture(), {0, 0, 0, 0});
    EXPECT_EQ(lines(followed), lines(made));
    EXPECT_FALSE(lines(made).empty());
}

}  // namespace
}  // namespace Tesseret::Viewer
