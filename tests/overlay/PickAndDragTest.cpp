// What the pen grabs, and what that writes to the parameters. No OpenGL context: hosts give none to
// pen actions.

#include <cmath>
#include <limits>

#include "tests/fixtures/PluginMemory.h"
#include "tests/overlay/OverlayRig.h"

namespace Tesseret::Fixtures {
namespace {

using ::testing::ElementsAre;

/// A press at one point, a drag to another, and the box that results.
struct DragCase {
    const char* what;
    double fromX, fromY, toX, toY;
    double x1, y1, x2, y2;
};

TEST(Overlay, DragsWhatIsUnderThePen)
{
    const DragCase cases[] = {
        {"left edge", 81, 150, 91, 170, 90, 60, 320, 240},
        {"right edge", 318, 150, 308, 170, 80, 60, 310, 240},
        {"bottom edge", 200, 62, 230, 72, 80, 70, 320, 240},
        {"top edge", 250, 239, 230, 229, 80, 60, 320, 230},
        {"top left corner", 81, 241, 91, 231, 90, 60, 320, 230},
        {"bottom right corner", 322, 58, 332, 48, 80, 48 + 2, 330, 240},
        {"horizontal bar", 210, 152, 220, 172, 90, 60, 330, 240},
        {"vertical bar", 201, 165, 221, 175, 80, 70, 320, 250},
        {"centre", 200, 152, 210, 162, 90, 70, 330, 250},
        {"past the opposite edge", 81, 150, 781, 150, 320, 60, 320, 240},
        {"top edge down to the bottom", 250, 239, 250, -100, 80, 60, 320, 60},
        {"nothing: just off an edge", 83, 150, 93, 150, 80, 60, 320, 240},
        {"nothing: beyond the bar", 200, 175, 210, 185, 80, 60, 320, 240},
    };
    for (const DragCase& c : cases) {
        SCOPED_TRACE(c.what);
        OverlayRig rig;
        rig.overlay->draw();
        rig.move(c.fromX, c.fromY);
        rig.press(c.fromX, c.fromY);
        rig.move(c.toX, c.toY);
        rig.lift(c.toX, c.toY);
        EXPECT_THAT(rig.box(), boxIs(c.x1, c.y1, c.x2, c.y2));
    }
}

TEST(Overlay, AnEdgeStoppedAtTheOppositeOneLagsBehindThePen)
{
    OverlayRig rig;
    rig.overlay->draw();
    rig.press(80, 150);
    for (const double x : {200.0, 400.0, 350.0}) rig.move(x, 150);
    rig.lift(350, 150);
    EXPECT_THAT(rig.box(), boxIs(270, 60, 320, 240)) << "50 back from the right edge";
}

TEST(Overlay, NarrowBoxesPickLeftAndTop)
{
    OverlayRig rig;
    rig.setBox({0.5, 0.5}, {0.505, 0.505});  // (200, 150)-(202, 151.5)
    rig.overlay->draw();
    rig.press(201, 151);
    rig.move(191, 161);
    rig.lift(191, 161);
    EXPECT_THAT(rig.box(), boxIs(190, 150, 202, 161.5));
}

TEST(Overlay, WritesTheCornersInOrder)
{
    OverlayRig rig;
    rig.setBox({0.8, 0.8}, {0.2, 0.2});
    rig.overlay->draw();
    EXPECT_THAT(rig.box(), boxIs(320, 240, 80, 60)) << "drawing writes nothing";
    rig.press(80, 150);
    EXPECT_THAT(rig.box(), boxIs(320, 240, 80, 60));
    rig.move(80, 150);
    EXPECT_THAT(rig.box(), boxIs(320, 240, 80, 60)) << "a step of nothing writes nothing";
    rig.move(70, 150);
    EXPECT_THAT(rig.box(), boxIs(70, 60, 320, 240));
}

TEST(Overlay, MeasuresFromTheProjectsOffset)
{
    OverlayRig rig;
    rig.instance().setProject({.size = {200, 100}, .offset = {50, 20}, .extent = {250, 120}});
    rig.overlay->draw();  // (90, 40)-(210, 100)
    rig.press(90, 70);
    rig.move(110, 70);
    rig.lift(110, 70);
    EXPECT_THAT(rig.box(), boxIs(60, 20, 160, 80));
}

TEST(Overlay, ReportsWhetherAnythingChanged)
{
    OverlayRig rig;
    rig.overlay->draw();
    const unsigned int before = rig.overlay->redraws();
    EXPECT_EQ(rig.move(10, 10), kOfxStatReplyDefault);
    EXPECT_EQ(rig.press(10, 10), kOfxStatReplyDefault);
    EXPECT_EQ(rig.lift(10, 10), kOfxStatReplyDefault);
    EXPECT_EQ(rig.overlay->redraws(), before);

    EXPECT_EQ(rig.move(81, 150), kOfxStatOK);
    EXPECT_EQ(rig.move(81, 150.0001), kOfxStatOK) << "the pen hovers";
    EXPECT_EQ(rig.overlay->redraws(), before + 2);
    rig.overlay->draw();
    EXPECT_EQ(rig.move(40, 150), kOfxStatOK) << "hover ends";
    EXPECT_EQ(rig.move(39, 150), kOfxStatOK) << "not drawn since";
    rig.overlay->draw();
    rig.overlay->draw();
    EXPECT_EQ(rig.move(38, 150), kOfxStatReplyDefault);
    EXPECT_EQ(rig.move(38.0005, 150), kOfxStatReplyDefault);

    EXPECT_EQ(rig.press(80, 150), kOfxStatOK);
    EXPECT_EQ(rig.move(80, 150), kOfxStatReplyDefault) << "held without moving";
    EXPECT_EQ(rig.move(85, 150), kOfxStatOK);
    EXPECT_EQ(rig.lift(85, 150), kOfxStatOK);
    EXPECT_EQ(rig.overlay->gainFocus(), kOfxStatReplyDefault);
    EXPECT_EQ(rig.overlay->loseFocus(), kOfxStatReplyDefault);
    EXPECT_EQ(rig.overlay->keyDown({}), kOfxStatReplyDefault);
    EXPECT_EQ(rig.overlay->action(nullptr), kOfxStatReplyDefault);
}

TEST(Overlay, IsNeitherDrawnNorPickedWhileHidden)
{
    OverlayRig rig;
    rig.instance().set("showWidget", 0);
    rig.overlay->draw();
    EXPECT_EQ(rig.move(80, 150), kOfxStatReplyDefault);
    EXPECT_EQ(rig.press(80, 150), kOfxStatReplyDefault);
    EXPECT_EQ(rig.move(90, 150), kOfxStatReplyDefault);
    EXPECT_THAT(rig.box(), boxIs(80, 60, 320, 240));
}

TEST(Overlay, ListsItsParametersInOrder)
{
    const OverlayRig rig;
    EXPECT_THAT(rig.overlay->slaveParameters(),
                ElementsAre("sampleCorner1", "sampleCorner2", "showWidget"));
}

TEST(Overlay, TwoViewersOfOneInstanceWorkSideBySide)
{
    OverlayRig rig;
    Host::Interact second(rig.instance());
    rig.overlay->draw();
    second.draw();
    rig.press(80, 150);
    rig.move(90, 150);
    EXPECT_EQ(second.penMotion(OverlayRig::at(10, 10)), kOfxStatReplyDefault);
    rig.lift(90, 150);
    second.draw();
    EXPECT_EQ(second.penDown(OverlayRig::at(320, 150)), kOfxStatOK);
    second.penMotion(OverlayRig::at(310, 150));
    second.penUp(OverlayRig::at(310, 150));
    EXPECT_THAT(rig.box(), boxIs(90, 60, 310, 240));
}

// Hosts tear a node down in an order of their own. The rig sends the second DestroyInstance, and
// the overlays' own after the first.
TEST(Overlay, OutlivesItsEffect)
{
    OverlayRig rig;
    const Host::Interact second(rig.instance());
    rig.overlay->draw();
    rig.move(80, 150);
    rig.press(80, 150);
    const unsigned int redraws = rig.overlay->redraws();
    EXPECT_EQ(rig.instance().action(kOfxActionDestroyInstance), kOfxStatOK);
    EXPECT_EQ(rig.move(90, 150), kOfxStatReplyDefault);
    EXPECT_EQ(rig.lift(90, 150), kOfxStatReplyDefault);
    EXPECT_EQ(rig.press(80, 150), kOfxStatReplyDefault);
    EXPECT_EQ(rig.overlay->draw(), kOfxStatReplyDefault);
    EXPECT_EQ(rig.overlay->loseFocus(), kOfxStatReplyDefault);
    EXPECT_EQ(rig.overlay->redraws(), redraws);
    EXPECT_THAT(rig.box(), boxIs(80, 60, 320, 240));
}

TEST(Overlay, WritesNoValueThatIsNotANumber)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    for (const OfxPointD& size : {OfxPointD{0, 0}, {400, 0}, {nan, 300}, {infinity, 300}}) {
        for (const double position : {0.0, 80.0, nan, infinity, 1e300}) {
            OverlayRig rig;
            rig.instance().setProject({.size = size, .extent = size});
            rig.overlay->draw();
            rig.press(position, position);
            rig.move(position + 5, position - 5);
            rig.lift(5, 5);
            for (const char* name : {"sampleCorner1", "sampleCorner2"}) {
                const auto corner = std::get<std::vector<double>>(rig.instance().value(name));
                EXPECT_TRUE(std::isfinite(corner[0]) && std::isfinite(corner[1]))
                    << name << ' ' << size.x << ' ' << position;
            }
        }
    }
}

TEST(Overlay, DoesNothingWhereTheHostKeepsNothing)
{
    OverlayRig rig;
    rig.quirks().interactHasNoProperties = true;
    {
        Host::Interact forgotten(rig.instance());
        EXPECT_EQ(forgotten.draw(), kOfxStatReplyDefault);
        EXPECT_EQ(forgotten.penDown(OverlayRig::at(80, 150)), kOfxStatReplyDefault);
    }
    rig.quirks().interactHasNoProperties = false;
    rig.overlay->draw();
    EXPECT_EQ(rig.press(80, 150), kOfxStatOK) << "the other one is as it was";
}

TEST(Overlay, IgnoresActionsWhenThereWasNoMemoryToMakeIt)
{
    OverlayRig rig;
    rig.overlay->draw();
    EXPECT_EQ(rig.overlay->action(kOfxActionDestroyInstance), kOfxStatReplyDefault);
    const PluginMemory memory(reinterpret_cast<const void*>(rig.effect().plugin().mainEntry));
    for (unsigned int k = 1;; ++k) {
        SCOPED_TRACE(k);
        const long before = PluginMemory::live();
        PluginMemory::failFrom(k);
        EXPECT_EQ(rig.overlay->action(kOfxActionCreateInstance), kOfxStatOK);
        PluginMemory::recover();
        if (!PluginMemory::hasFailed()) break;
        ASSERT_EQ(rig.overlay->properties().pointerOr(kOfxPropInstanceData, nullptr), nullptr);
        EXPECT_EQ(rig.press(80, 150), kOfxStatReplyDefault);
        EXPECT_EQ(PluginMemory::live(), before);
    }
    rig.overlay->draw();
    EXPECT_EQ(rig.press(80, 150), kOfxStatOK);
}

TEST(Overlay, TwoHundredDragsLeakNothing)
{
    OverlayRig rig;
    rig.overlay->draw();
    for (int i = 0; i < 200; ++i) {
        const double x = i % 2 == 0 ? 80 : 90;
        rig.press(x, 150);
        rig.move(170 - x, 150);
        rig.lift(170 - x, 150);
        rig.overlay->draw();
    }
    EXPECT_THAT(rig.box(), boxIs(80, 60, 320, 240));
}

}  // namespace
}  // namespace Tesseret::Fixtures
