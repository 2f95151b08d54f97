// The drawing layer by itself.

#include <cmath>

#include <gmock/gmock.h>

#include "overlay/Draw.h"
#include "overlay/ManipulatorGroup.h"
#include "overlay/MatrixStack.h"
#include "overlay/OverlayText.h"
#include "overlay/RectManipulator.h"
#include "platform/OverlayFont.h"
#include "tests/fixtures/OffscreenGl.h"

namespace Orvane {
namespace {

using Tesseret::Fixtures::kBackground;
using Tesseret::Fixtures::OffscreenGl;
using Tesseret::Fixtures::Rgb;

struct Font {
    Font() { ensureOverlayFont(); }
    ~Font() { deleteOverlayFont(); }
};

TEST(OverlayText, DrawsYellowOverItsShadow)
{
    OffscreenGl gl(60, 30);
    const Font font;
    EXPECT_EQ(overlayFontHeight(), 18);
    drawShadowedText("H", 10.0f, 8.0f);
    int yellow = 0, shadow = 0, others = 0;
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 60; ++x) {
            const Rgb p = gl.pixel(x, y);
            if (p == kBackground) continue;
            ++(p == Rgb{255, 255, 0} ? yellow : p == Rgb{26, 26, 26} ? shadow : others);
        }
    }
    EXPECT_GT(yellow, 40);
    EXPECT_GT(shadow, 10);
    EXPECT_EQ(others, 0);
    // A capital is drawn on the line, and its stems are bold: two pixels wide at least.
    EXPECT_EQ(gl.pixel(13, 8), kBackground) << "below the line";
}

TEST(OverlayText, EveryCharacterButTheSpaceShowsAndAdvances)
{
    OffscreenGl gl(60, 40);
    const Font font;
    setColour(kTextColour);
    for (int code = 32; code < 127; ++code) {
        gl.clear();
        const char text[] = {static_cast<char>(code), '|', '\0'};
        drawText(text, 1, 10.0f, 10.0f);
        const int alone = gl.drawnPixels();
        EXPECT_EQ(alone > 0, code != 32) << text;
        drawText(text, 2, 10.0f, 10.0f);
        EXPECT_GT(gl.drawnPixels(), alone) << text;
    }
}

TEST(OverlayText, WithoutFontOrTextDrawsNothing)
{
    OffscreenGl gl(60, 40);
    drawText("A", 1, 5.0f, 5.0f);
    drawShadowedText(nullptr, 5.0f, 5.0f);
    EXPECT_EQ(createOverlayFont(nullptr), 0u);
    const Font font;
    drawShadowedText(nullptr, 5.0f, 5.0f);
    drawText("A", 0, 5.0f, 5.0f);
    drawText("\x81\xFE", 2, 5.0f, 5.0f);  // lists that do not exist
    EXPECT_EQ(gl.drawnPixels(), 0);
}

TEST(OverlayDraw, CirclesAndDisksAreRoundTheirCentre)
{
    OffscreenGl gl(60, 60);
    const OverlayColour red{1.0f, 0.0f, 0.0f}, blue{0.0f, 0.0f, 1.0f};
    setColour(red);
    for (const float radius : {0.0f, -3.0f, std::nanf("")}) {
        drawCircle(30.0f, 30.0f, radius);
        drawDisk(30.0f, 30.0f, radius);
        drawDiskOutlined(30.0f, 30.0f, radius, red, blue);
    }
    EXPECT_EQ(gl.drawnPixels(), 0);
    drawDisk(30.0f, 30.0f, 10.0f);
    EXPECT_EQ(gl.pixel(30, 30), (Rgb{255, 0, 0}));
    EXPECT_NEAR(gl.drawnPixels(), 314, 25);
    gl.clear();
    drawDiskOutlined(30.0f, 30.0f, 10.0f, red, blue);
    EXPECT_EQ(gl.pixel(30, 30), (Rgb{255, 0, 0}));
    EXPECT_EQ(gl.pixel(30, 40).b + gl.pixel(30, 39).b > 200, true);
    gl.clear();
    setColour(red);
    drawCircle(30.0f, 30.0f, 10.0f);
    EXPECT_EQ(gl.pixel(30, 30), kBackground);
    EXPECT_GT(gl.drawnPixels(), 40);
}

TEST(MatrixStack, NestsTransformsAndInvertsThemForThePen)
{
    const Matrix3 moved{{{1, 0, 0}, {0, 1, 0}, {7, 3, 1}}};
    const Matrix3 turned{{{0, 2, 0}, {-2, 0, 0}, {0, 0, 1}}};  // a quarter turn, doubled
    pushMatrixStack();
    multMatrixStack(moved);
    pushMatrixStack();
    multMatrixStack(turned);
    EXPECT_EQ(transformed({1, 0}, topOfMatrixStack()), (OvPoint{7, 5}));
    EXPECT_EQ(transformed({7, 5}, *inverseOfMatrixStack()), (OvPoint{1, 0}));
    EXPECT_EQ(popMatrixStack(), moved);
    EXPECT_EQ(popMatrixStack(), Matrix3{});
    EXPECT_EQ(popMatrixStack(), Matrix3{}) << "level 0 stays";
    for (int i = 0; i < 40; ++i) pushMatrixStack();
    multMatrixStack(moved);
    EXPECT_EQ(pushMatrixStack(), moved) << "no level above the last";
    for (int i = 0; i < 31; ++i) popMatrixStack();
    EXPECT_EQ(topOfMatrixStack(), Matrix3{});
    pushMatrixStack();
    multMatrixStack({{{0, 0, 0}, {0, 0, 0}, {0, 0, 1}}});
    EXPECT_FALSE(inverseOfMatrixStack());
    popMatrixStack();
    EXPECT_TRUE(inverseOfMatrixStack());
}

TEST(MatrixStack, ReachesOpenGL)
{
    OffscreenGl gl(40, 40);
    pushMatrixStack();
    multMatrixStack({{{2, 0, 0}, {0, 1, 0}, {10, 20, 1}}});
    glPushMatrix();
    applyMatrixStack();
    setColour({1.0f, 1.0f, 1.0f});
    drawLine(1.0f, 0.5f, 6.0f, 0.5f);  // from (12, 20.5) to (22, 20.5)
    glPopMatrix();
    popMatrixStack();
    EXPECT_EQ(gl.pixel(11, 20), kBackground);
    EXPECT_EQ(gl.pixel(13, 20), (Rgb{255, 255, 255}));
    EXPECT_EQ(gl.pixel(21, 20), (Rgb{255, 255, 255}));
    EXPECT_EQ(gl.pixel(23, 20), kBackground);
}

TEST(ManipulatorGroup, PicksAndDragsInItsOwnCoordinates)
{
    RectManipulator below("below"), above("above");
    below.setRect(0, 0, 10, 10);
    above.setRect(0, 0, 10, 20);
    ManipulatorGroup group("group");
    group.add(below);
    group.add(above);
    group.setTransform({.translation = {100, 50}, .scale = 2.0f});
    const OvPoint tolerance{3, 3};
    EXPECT_EQ(group.pickIfNear({102.9f, 82}, tolerance), &above) << "the last one first";
    EXPECT_EQ(group.pickIfNear({103.1f, 82}, tolerance), nullptr) << "the tolerance shrinks";
    above.setActive(false);
    EXPECT_EQ(group.pickIfNear({101, 60}, tolerance), &below);
    EXPECT_TRUE(group.press({100, 60}));
    EXPECT_TRUE(group.drag({104, 60}));
    EXPECT_EQ(below.rect().xMin, 2.0f);
    EXPECT_TRUE(group.release());
    below.setShown(false);
    EXPECT_EQ(group.pickIfNear({104, 60}, tolerance), nullptr);
    EXPECT_FALSE(group.drag({110, 60}));
}

}  // namespace
}  // namespace Orvane
