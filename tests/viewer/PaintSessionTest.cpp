#include <algorithm>

#include "files/FileError.h"
#include "render/JobError.h"
#include "tests/viewer/SessionFixture.h"
#include "viewer/model/MatteShapes.h"
#include "viewer/model/MatteTools.h"
#include "viewer/model/WindowWording.h"

namespace Tesseret::Viewer {
namespace {

using Fixtures::kHeight;
using Fixtures::kWidth;
using Fixtures::LoadedPicture;
using Host::ParameterValue;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class PaintSessionTest : public SessionFixture {
protected:
    /// Two areas, one of them with a soft rim.
    static void paintTwoAreas(ViewSession& session)
    {
        session.paint([](MattePaint& paint) {
            drawStroke(paint, {.size = 24.0, .softness = 0.6}, {40, 60}, {70, 70}, false);
        });
        session.paint([](MattePaint& paint) { fillRectangle(paint, {150, 20}, {170, 50}, false); });
    }
    static std::shared_ptr<const RenderResult> rendered(ViewSession& session)
    {
        session.request(session.fullScale());
        session.worker().wait();
        EXPECT_EQ(session.worker().latest()->error, "");
        return session.worker().latest();
    }
    /// Saves matte and result, and runs the printed command.
    void expectTheCommandAgrees(ViewSession& session, const std::string& output)
    {
        session.saveResult(in("seen.png"));
        session.saveMatte(in("painted.png"));
        const std::string command = session.commandText();
        EXPECT_THAT(command, HasSubstr("--matte " + in("painted.png")));
        EXPECT_EQ(pasted(command, output), load(in("seen.png"))) << command;
    }
    static std::string region(const ViewSession& session)
    {
        return Render::valueText(*session.description().parameter("fillRegion"),
                                 session.value("fillRegion"));
    }
};

TEST_F(PaintSessionTest, WhatIsPaintedIsFilledAsFromItsFile)
{
    struct Case {
        const char* what;
        std::optional<Depth> depth;
        double grow;
        bool everyArea, cropsAreas;
    };
    for (const Case& each : {Case{"as it is", {}, 0.0, true, true},
                             {"16 bits", Depth::Short, 0.0, true, true},
                             {"float", Depth::Float, 0.0, true, true},
                             {"grown", {}, 3.5, true, true},
                             {"the first area", {}, 0.0, false, true},
                             {"the whole matte", {}, 0.0, false, false}}) {
        SCOPED_TRACE(each.what);
        Render::RenderSettings given = settings();
        given.output = in("o.png");
        given.depth = each.depth;
        given.matteGrow = each.grow;
        given.everyArea = each.everyArea;
        given.cropsAreas = each.cropsAreas;
        ViewSession session(given);
        paintTwoAreas(session);
        expectTheCommandAgrees(session, "o.png");
        EXPECT_NE(load(in("o.png")), load(in("a.png")));
        EXPECT_EQ(rendered(session)->areas.size(), each.everyArea ? 2u : 1u);
    }
}

TEST_F(PaintSessionTest, TheFirstStrokeLetsTheFillComeFromTheMatte)
{
    ViewSession session(settings());
    EXPECT_EQ(session.description().context, std::string(kOfxImageEffectContextGeneral));
    EXPECT_EQ(region(session), "Entire Image");
    const LoadedPicture whole = filled({});
    session.saveResult(in("whole.png"));
    EXPECT_EQ(load(in("whole.png")), whole) << "nothing is painted yet";
    EXPECT_THAT(session.commandText(), Not(HasSubstr("--context")));
    EXPECT_FALSE(session.needsMatteFile());

    session.takeChanged();
    session.beginPaint();
    drawStroke(session.matte()->paint(), {}, {60, 60}, {60, 60}, false);
    EXPECT_FALSE(session.takeChanged()) << "while the stroke is being drawn";
    session.saveResult(in("during.png"));
    EXPECT_EQ(load(in("during.png")), whole);
    session.endPaint();
    EXPECT_TRUE(session.takeChanged());
    EXPECT_EQ(region(session), "Matte->Alpha");
    EXPECT_EQ(session.value("avoidFillRegion"), ParameterValue(1)) << "as a command with a matte";
    EXPECT_TRUE(session.needsMatteFile());

    session.undo();
    EXPECT_EQ(region(session), "Entire Image");
    EXPECT_EQ(session.value("avoidFillRegion"), ParameterValue(0));
    EXPECT_TRUE(isEmpty(session.matte()->paint().maskedBox()));
    EXPECT_FALSE(session.canUndo());
    EXPECT_TRUE(session.takeChanged());
    session.redo();
    EXPECT_EQ(region(session), "Matte->Alpha");
    EXPECT_FALSE(isEmpty(session.matte()->paint().maskedBox()));
}

TEST_F(PaintSessionTest, ErasedCompletelyNothingIsFilled)
{
    ViewSession session(settings());
    paintTwoAreas(session);
    session.paint([](MattePaint& paint) { clearMatte(paint); });
    session.saveResult(in("o.png"));
    EXPECT_EQ(load(in("o.png")), load(in("a.png")));
    for (int i = 0; i < 2; ++i) {
        EXPECT_THAT(rendered(session)->notes, Contains(HasSubstr("masks nothing")))
            << "each render says so";
        session.set("seed", 10 + i);
    }
    session.undo();
    session.undo();
    session.undo();
    EXPECT_THAT(rendered(session)->notes, IsEmpty());
}

TEST_F(PaintSessionTest, StrokesAndValuesAreUndoneInTheirOrder)
{
    ViewSession session(settings());
    paintTwoAreas(session);
    session.set("seed", 9);
    session.paint([](MattePaint& paint) { growMatte(paint, 2.0); });
    const std::shared_ptr<const Picture> grown = session.matte()->painted();
    session.undo();
    EXPECT_EQ(session.value("seed"), ParameterValue(9));
    EXPECT_NE(session.matte()->painted(), grown);
    session.undo();
    EXPECT_NE(session.value("seed"), ParameterValue(9));
    session.redo();
    session.redo();
    EXPECT_FALSE(session.canRedo());
    session.beginPaint();
    drawStroke(session.matte()->paint(), {}, {100, 100}, {120, 100}, false);
    session.cancelPaint();
    EXPECT_FALSE(session.canRedo());
    session.undo();
    EXPECT_EQ(session.value("seed"), ParameterValue(9)) << "the dropped stroke is no step";
}

TEST_F(PaintSessionTest, AMatteFileCanBePaintedOn)
{
    Render::RenderSettings given = settings("m.png");
    given.output = in("o.png");
    ViewSession session(given);
    EXPECT_TRUE(session.matte()->isSaved());
    EXPECT_FALSE(session.needsMatteFile());
    const auto asGiven = rendered(session);
    session.paint([](MattePaint& paint) { fillRectangle(paint, {90, 10}, {110, 30}, false); });
    EXPECT_TRUE(session.needsMatteFile());
    EXPECT_EQ(rendered(session)->areas.size(), 3u);
    session.undo();
    EXPECT_EQ(rendered(session)->request, asGiven->request) << "the file's again";
    session.redo();
    expectTheCommandAgrees(session, "o.png");
    session.saveMatte(in("m.png"));  // over the file that it came from
    EXPECT_FALSE(session.needsMatteFile());
    EXPECT_EQ(pasted(session.commandText(), "o.png"), load(in("seen.png")));
    session.undo();
    EXPECT_TRUE(session.needsMatteFile());
}

TEST_F(PaintSessionTest, PaintOnAnInvertedMatteIsFilledToo)
{
    paintMatte("inverted.png", Fixtures::masks({Fixtures::kLow}, {}, /*inverted=*/true));
    Render::RenderSettings given = settings("inverted.png");
    given.mask = Render::MaskOption::MatteInverted;
    given.output = in("o.png");
    ViewSession session(given);
    const auto before = rendered(session);
    ASSERT_EQ(before->areas.size(), 1u);
    session.paint([](MattePaint& paint) { fillRectangle(paint, {20, 20}, {40, 40}, false); });
    EXPECT_EQ(region(session), "Matte->Alpha");
    EXPECT_EQ(rendered(session)->areas.size(), 2u);
    expectTheCommandAgrees(session, "o.png");
    session.undo();
    EXPECT_EQ(region(session), "Matte->Inverted Alpha");
    EXPECT_EQ(rendered(session)->areas.size(), 1u);
}

TEST_F(PaintSessionTest, LoadsAndSavesMattes)
{
    ViewSession session(settings());
    session.loadMatte(in("m.png"));
    EXPECT_EQ(region(session), "Matte->Alpha");
    EXPECT_FALSE(session.needsMatteFile());
    session.saveResult(in("o.png"));
    EXPECT_EQ(load(in("o.png")), filled({"--matte", in("m.png")}));
    EXPECT_EQ(pasted(session.commandText(), "filled-a.png"), load(in("o.png")));

    session.saveMatte(in("again.png"));
    EXPECT_EQ(load(in("again.png")), load(in("m.png"))) << "grey, white on black";
    paint(in("small.png"), 20, 10, Fixtures::noise(2));
    EXPECT_THROW(session.loadMatte(in("small.png")), Render::UsageError);
    EXPECT_THROW(session.loadMatte(in("none.png")), Files::FileError);
    EXPECT_THROW(session.saveMatte(in("m.jpg")), Render::UsageError);
    EXPECT_THROW(session.saveMatte(in("none/m.png")), Files::FileError);
    EXPECT_THROW(session.saveMatte(in("a.png")), Render::UsageError);
    EXPECT_THROW(session.saveResult(in("again.png")), Render::UsageError)
        << "the matte is an input";
    session.undo();
    EXPECT_FALSE(session.canUndo()) << "what failed is no step";
    EXPECT_EQ(region(session), "Entire Image");
}

TEST_F(PaintSessionTest, OnePaintServesAllFrames)
{
    for (const int frame : {5, 6}) {
        paint(in(Fixtures::numbered("s.%04d.png", frame)), kWidth, kHeight, Fixtures::noise(frame));
    }
    Render::RenderSettings given = settings();
    given.source = in("s.####.png");
    given.frames = {5, 6};
    given.parameters.emplace_back("temporalConsistancy=on");
    ViewSession session(given);
    paintTwoAreas(session);
    session.saveMatte(in("painted.png"));
    fill("s.####.png", "o.####.png",
         {"--matte", in("painted.png"), "--frames", "5-6", "temporalConsistancy=on"});
    for (const int frame : {6, 5}) {
        session.setFrame(frame);
        session.saveResult(in("seen.png"));
        EXPECT_EQ(load(in("seen.png")), load(in(Fixtures::numbered("o.%04d.png", frame))));
    }
    session.paint([](MattePaint& paint) { fillRectangle(paint, {90, 90}, {110, 110}, false); });
    EXPECT_EQ(rendered(session)->areas.size(), 3u);
}

TEST_F(PaintSessionTest, SaysWhereNothingCanBePainted)
{
    for (const int frame : {5, 6}) {
        paintMatte(Fixtures::numbered("m.%04d.png", frame), Fixtures::masks({Fixtures::kLow}));
    }
    Render::RenderSettings given = settings("m.####.png");
    given.frames = {5, 6};
    ViewSession sequence(given);
    EXPECT_THAT(sequence.paintObstacle(), HasSubstr("m.####.png has a matte for each frame"));
    EXPECT_THROW(paintTwoAreas(sequence), Render::UsageError);
    EXPECT_FALSE(isEmpty(sequence.matte()->paint().maskedBox())) << "it is shown";
    EXPECT_EQ(rendered(sequence)->areas.size(), 1u);

    Render::RenderSettings filter = settings();
    filter.context = "Filter";
    EXPECT_NE(ViewSession(filter).paintObstacle(), "");
    ViewSession other(foreign(INVERT_PLUGIN));
    EXPECT_NE(other.paintObstacle(), "");
    EXPECT_THROW(other.beginPaint(), Render::UsageError);
    EXPECT_THROW(other.saveMatte(in("x.png")), Render::UsageError);
}

TEST_F(PaintSessionTest, TheSampleBoxIsSetInPixels)
{
    ViewSession session(settings());
    paintTwoAreas(session);
    EXPECT_FALSE(session.usesSampleBox());
    session.setSampleBox({20.4, 100.0, 90.9, 900.0});
    const OfxRectI box = *session.sampleBox();
    EXPECT_EQ(box.x1, 20);
    EXPECT_EQ(box.y1, 100);
    EXPECT_EQ(box.x2, 90);
    EXPECT_EQ(box.y2, kHeight) << "clipped at the picture";
    EXPECT_TRUE(session.usesSampleBox());
    session.saveMatte(in("painted.png"));
    session.saveResult(in("seen.png"));
    EXPECT_EQ(load(in("seen.png")),
              filled({"--matte", in("painted.png"), "--sample-box", "20,0,90,60"}));
    session.setSampleBox({300.0, 0.0, 400.0, 50.0});
    EXPECT_EQ(session.sampleBox()->x1, 20) << "a box off the picture is none";
    session.undo();
    EXPECT_FALSE(session.usesSampleBox()) << "one step";
    EXPECT_EQ(session.sampleBox()->x1, 40);
}

TEST_F(PaintSessionTest, DraggingTheOverlaysBoxLetsTheFillComeFromIt)
{
    ViewSession session(settings());
    paintTwoAreas(session);
    session.overlay()->draw();
    session.movePen(penAt(40, 80));
    session.pressPen(penAt(40, 80));
    session.releasePen(penAt(40, 80));
    EXPECT_FALSE(session.usesSampleBox()) << "it did not move";
    session.pressPen(penAt(40, 80));
    session.movePen(penAt(50, 80));
    session.releasePen(penAt(50, 80));
    EXPECT_TRUE(session.usesSampleBox());
    session.undo();
    EXPECT_FALSE(session.usesSampleBox());
    EXPECT_EQ(session.sampleBox()->x1, 40);
}

TEST_F(PaintSessionTest, NotesSpeakOfTheWindow)
{
    Render::RenderSettings given = settings();
    given.parameters.emplace_back("avoidFillRegion=off");
    ViewSession session(given);
    session.paint([](MattePaint& paint) {
        for (int x = 2; x < 180; x += 12) {
            for (int y = 2; y < 150; y += 12)
                fillRectangle(paint, {x + 0.0, y + 0.0}, {x + 2.0, y + 2.0}, false);
        }
    });
    const auto result = rendered(session);
    ASSERT_EQ(result->notes.size(), 2u) << "many areas, and the box lies over them";
    for (const std::string& note : result->notes) {
        EXPECT_THAT(note, Not(HasSubstr("--")));
        EXPECT_THAT(note, Not(HasSubstr("avoidFillRegion")));
    }
    EXPECT_THAT(result->notes, Contains(HasSubstr("tool Sample box")));
    EXPECT_THAT(result->notes, Contains(HasSubstr("Grow")));
    session.undo();
    EXPECT_THAT(rendered(session)->notes, IsEmpty());
}

TEST_F(PaintSessionTest, ErrorsSpeakOfTheWindow)
{
    paint(in("t.png"), 100, 80, Fixtures::noise(3));
    Render::RenderSettings given = settings();
    given.textures[0] = in("t.png");
    ViewSession session(given);
    session.setAll({{"sampleCorner1", std::vector<double>{0.1, 0.1}},
                    {"sampleCorner2", std::vector<double>{0.9, 0.9}}});
    session.request(1.0);
    session.worker().wait();
    EXPECT_THAT(session.worker().latest()->error,
                testing::AllOf(HasSubstr("reaches beyond this texture"),
                               HasSubstr("tool Sample box"), Not(HasSubstr("--"))));
}

TEST_F(PaintSessionTest, EachToolIsOneStep)
{
    struct Case {
        ToolKind kind;
        std::vector<OfxPointD> presses;
    };
    ViewSession session(settings());
    const Brush brush{.size = 10.0, .softness = 0.0};
    for (const Case& each : {Case{ToolKind::Brush, {{50, 50}, {90, 50}}},
                             Case{ToolKind::Rectangle, {{50, 50}, {90, 70}}},
                             Case{ToolKind::Lasso, {{50, 50}, {90, 50}, {70, 90}}}}) {
        SCOPED_TRACE(rowOf(each.kind).label);
        const std::unique_ptr<PictureTool> tool = makeTool(each.kind, session, brush);
        for (const bool drops : {true, false}) {
            tool->press({each.presses.front()});
            for (const OfxPointD& at : each.presses) tool->move({at});
            EXPECT_TRUE(tool->isActive());
            if (drops) tool->cancel();
            tool->release();
            EXPECT_FALSE(tool->isActive());
            EXPECT_EQ(session.canUndo(), !drops);
        }
        EXPECT_FALSE(isEmpty(session.matte()->paint().maskedBox()));
        const std::unique_ptr<PictureTool> eraser = makeTool(ToolKind::Rectangle, session, brush);
        eraser->press({{0, 0}, 1.0, /*erases=*/true});
        eraser->move({{200, 160}});
        eraser->release();
        EXPECT_TRUE(isEmpty(session.matte()->paint().maskedBox()));
        session.undo();
        session.undo();
        EXPECT_FALSE(session.canUndo());
    }
}

TEST_F(PaintSessionTest, APolygonIsClosedInThreeWays)
{
    ViewSession session(settings());
    const Brush brush;
    const std::unique_ptr<PictureTool> tool = makeTool(ToolKind::Polygon, session, brush);
    const std::vector<OfxPointD> corners{{20, 20}, {80, 20}, {80, 60}};
    for (const int way : {0, 1, 2}) {
        for (const OfxPointD& corner : corners) {
            tool->press({corner, 4.0});
            tool->release();
            tool->move({{corner.x + 9, corner.y}, 4.0});
        }
        EXPECT_TRUE(tool->isActive());
        if (way == 0) tool->finish();
        if (way == 1) tool->press({{21, 21}, 4.0});
        if (way == 2) tool->press({{80, 61}, 4.0});
        EXPECT_FALSE(tool->isActive()) << way;
        const OfxRectI box = session.matte()->paint().maskedBox();
        EXPECT_EQ(box.x2, 80) << way;
        EXPECT_EQ(box.y2, 60) << way;
        session.undo();
        EXPECT_FALSE(session.canUndo()) << way;
    }
    tool->press({{20, 20}, 4.0});
    tool->press({{20, 20}, 4.0});
    tool->finish();
    EXPECT_FALSE(session.canUndo()) << "too few corners";
    EXPECT_THROW(makeTool(ToolKind::Fill, session, brush)->press({{5, 5}}), Render::UsageError);
    EXPECT_FALSE(session.canUndo());
}

TEST_F(PaintSessionTest, TheSeedAfterTheLastIsTheFirst)
{
    ViewSession session(settings());
    session.set("seed", 9000000 - 1);
    session.nextSeed();
    EXPECT_EQ(session.value("seed"), ParameterValue(9000000));
    session.nextSeed();
    EXPECT_EQ(session.value("seed"), ParameterValue(0));
    session.undo();
    EXPECT_EQ(session.value("seed"), ParameterValue(9000000));
    ViewSession(foreign(INVERT_PLUGIN)).nextSeed();
}

TEST_F(PaintSessionTest, AListOfValuesIsOneStep)
{
    ViewSession session(settings());
    session.setAll({{"seed", 4}, {"numSamples", 30}, {"edgeBlend", 2.5}});
    EXPECT_EQ(session.value("numSamples"), ParameterValue(30));
    session.undo();
    EXPECT_FALSE(session.canUndo());
    EXPECT_NE(session.value("seed"), ParameterValue(4));
}

}  // namespace
}  // namespace Tesseret::Viewer
