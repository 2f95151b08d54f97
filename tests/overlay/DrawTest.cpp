// What the overlay draws, read back from a software OpenGL context.

#include "tests/overlay/OverlayRig.h"

namespace Tesseret::Fixtures {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::Each;

constexpr Rgb kRed{178, 0, 0}, kWhite{255, 255, 255};

/// The colours of a row or column of pixels, each rounded to red, white or the background where it
/// is near: smooth lines spread over two pixels.
std::vector<Rgb> along(OffscreenGl& gl, int x1, int y1, int x2, int y2)
{
    const auto brighter = [](const Rgb& a, const Rgb& b) {
        return a.r + a.g + a.b < b.r + b.g + b.b ? b : a;
    };
    std::vector<Rgb> colours;
    for (int y = y1; y <= y2; ++y) {
        for (int x = x1; x <= x2; ++x) {
            // A line on a pixel's edge covers half of the pixels on both sides of it.
            const Rgb here =
                brighter(gl.pixel(x, y), gl.pixel(x1 == x2 ? x - 1 : x, y1 == y2 ? y - 1 : y));
            const bool isWhite = here.g > 90;
            colours.push_back(here == kBackground ? kBackground : isWhite ? kWhite : kRed);
        }
    }
    return colours;
}

struct Look {
    std::vector<Rgb> left, right, bottom, top, horizontal, vertical;
};

Look lookOf(OffscreenGl& gl)
{
    return {along(gl, 80, 90, 80, 130),    along(gl, 320, 90, 320, 130),
            along(gl, 120, 60, 160, 60),   along(gl, 120, 240, 160, 240),
            along(gl, 183, 150, 196, 150), along(gl, 200, 133, 200, 146)};
}

const auto kAllRed = Each(kRed);
const auto kAllWhite = Each(kWhite);
const auto kDashed =
    AllOf(Contains(kRed).Times(::testing::Gt(3)), Contains(kWhite).Times(::testing::Gt(3)));

TEST(OverlayDrawing, ShowsWhatThePenIsOver)
{
    OffscreenGl gl(400, 300);
    OverlayRig rig;
    const auto drawn = [&] {
        gl.clear();
        EXPECT_EQ(rig.overlay->draw(), kOfxStatOK);
        return lookOf(gl);
    };
    const auto expectLook = [](const Look& look, const auto& left, const auto& top,
                               const auto& horizontal, const auto& vertical) {
        EXPECT_THAT(look.left, left);
        EXPECT_THAT(look.right, kAllRed);
        EXPECT_THAT(look.bottom, kAllRed);
        EXPECT_THAT(look.top, top);
        EXPECT_THAT(look.horizontal, horizontal);
        EXPECT_THAT(look.vertical, vertical);
    };
    expectLook(drawn(), kAllRed, kAllRed, kAllRed, kAllRed);
    rig.move(81, 239);
    expectLook(drawn(), kDashed, kDashed, kAllRed, kAllRed);
    rig.press(81, 239);
    expectLook(drawn(), kAllWhite, kAllWhite, kAllRed, kAllRed);
    rig.lift(81, 239);
    expectLook(drawn(), kDashed, kDashed, kAllRed, kAllRed);
    rig.move(210, 150);
    expectLook(drawn(), kAllRed, kAllRed, kDashed, kAllRed);
    rig.press(210, 150);
    expectLook(drawn(), kAllRed, kAllRed, kAllWhite, kAllRed);
    rig.lift(210, 150);
    rig.move(200, 150);
    expectLook(drawn(), kAllRed, kAllRed, kDashed, kDashed);
    rig.move(10, 10);
    expectLook(drawn(), kAllRed, kAllRed, kAllRed, kAllRed);
    rig.instance().set("showWidget", 0);
    drawn();
    EXPECT_EQ(gl.drawnPixels(), 0);
}

TEST(OverlayDrawing, FollowsTheParametersAndTheHostsMatrix)
{
    OffscreenGl gl(400, 300);
    OverlayRig rig;
    rig.setBox({0.25, 0.5}, {0.5, 0.75});  // (100, 150)-(200, 225)
    glTranslatef(50.0f, -20.0f, 0.0f);
    rig.overlay->draw();
    EXPECT_THAT(along(gl, 150, 140, 150, 160), kAllRed);
    EXPECT_THAT(along(gl, 180, 205, 190, 205), kAllRed);
    EXPECT_EQ(gl.pixel(100, 180), kBackground);
}

TEST(OverlayDrawing, RestoresEveryState)
{
    OffscreenGl gl(400, 300);
    OverlayRig rig;
    rig.overlay->draw();  // the first one makes the font
#if defined(_WIN32)
    glGetError();  // Wine's bitmaps of characters without pixels make one
#endif
    const auto check = [&](const char* what) {
        for (const bool hovered : {false, true}) {
            rig.move(hovered ? 81 : 10, 150);
            const auto before = gl.state();
            rig.overlay->draw();
            EXPECT_EQ(gl.state(), before) << what << (hovered ? ", hovered" : "");
        }
        rig.press(200, 150);
        const auto before = gl.state();
        rig.overlay->draw();
        EXPECT_EQ(gl.state(), before) << what << ", pressed";
        rig.lift(200, 150);
    };
    check("as it starts");
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_DST_COLOR);
    glEnable(GL_LINE_SMOOTH);
    glEnable(GL_LINE_STIPPLE);
    glLineStipple(3, 0x1234);
    glLineWidth(2.0f);
    glColor4f(0.1f, 0.2f, 0.3f, 0.4f);
    glRasterPos2f(17.0f, 19.0f);
    glListBase(5);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
    glRotatef(30.0f, 0.0f, 0.0f, 1.0f);
    check("everything changed");
    glMatrixMode(GL_PROJECTION);
    check("another matrix mode");
}

TEST(OverlayDrawing, NeedsNoContextToBeCreatedMovedAndDestroyed)
{
    OverlayRig rig;
    EXPECT_EQ(rig.overlay->draw(), kOfxStatOK) << "no context, and nothing to draw with";
    rig.press(80, 150);
    rig.move(90, 150);
    rig.lift(90, 150);
    EXPECT_THAT(rig.box(), boxIs(90, 60, 320, 240));
    OffscreenGl gl(400, 300);
    rig.overlay->draw();
    EXPECT_THAT(along(gl, 90, 90, 90, 130), Contains(kRed));
}

/// How many display lists there are among the first names.
int listCount()
{
    int count = 0;
    for (GLuint list = 1; list < 2000; ++list) count += glIsList(list) != 0;
    return count;
}

TEST(OverlayDrawing, KeepsOneFontUntilThePlugInIsUnloaded)
{
    OffscreenGl gl(400, 300);
    {
        OverlayRig rig;
        const Host::Interact second(rig.instance());
        for (int i = 0; i < 200; ++i) rig.overlay->draw();
        EXPECT_EQ(listCount(), 96);
        glDeleteLists(1, 0);
    }
    EXPECT_EQ(listCount(), 0);
}

}  // namespace
}  // namespace Tesseret::Fixtures
