/// Settings chosen by trials, and lists of steps as the state of a session.

#include <gmock/gmock.h>

#include "render/JobError.h"
#include "tests/viewer/SessionFixture.h"
#include "viewer/model/MatteShapes.h"

namespace Tesseret::Viewer {
namespace {

using Fixtures::LoadedPicture;
using Host::ParameterValue;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class ChoiceSessionTest : public SessionFixture {
protected:
    /// With no value given by name.
    Render::RenderSettings freeSettings(const char* matte = "") const
    {
        Render::RenderSettings free = settings(matte);
        free.output = in("o.png");
        free.parameters.clear();
        return free;
    }
    static void paintBox(ViewSession& session, OfxPointD a, OfxPointD b)
    {
        session.paint([&](MattePaint& paint) { fillRectangle(paint, a, b, false); });
    }
    /// One area above another; the lower one counts first.
    static void paintTwoAreas(ViewSession& session)
    {
        paintBox(session, {40, 20}, {70, 50});
        paintBox(session, {110, 90}, {150, 120});
    }
    static void choose(ViewSession& session, Fill::Effort effort = Fill::Effort::Quick)
    {
        session.startChoosing(effort);
        session.search().wait();
        EXPECT_TRUE(session.takeChoice());
    }
    LoadedPicture saved(ViewSession& session) const
    {
        session.saveResult(in("seen.png"));
        return load(in("seen.png"));
    }
    /// The printed command and the saved parameters give the session's picture.
    LoadedPicture expectTheCommandAgrees(ViewSession& session) const
    {
        const LoadedPicture seen = saved(session);
        session.saveMatte(in("painted.png"));
        const std::string command = session.commandText();
        EXPECT_EQ(pasted(command, "o.png"), seen) << command;
        session.saveParameters(in("p.json"));
        EXPECT_EQ(rendered("p.json"), seen);
        return seen;
    }
    /// `tesseret render` with a parameter file and the saved matte.
    LoadedPicture rendered(const std::string& parameters, const std::string& more = "") const
    {
        return pasted("tesseret render --source " + in("a.png") + " --matte " + in("painted.png") +
                          " --output " + in("r.png") + " --parameters " + in(parameters) +
                          " --threads 2 " + more,
                      "r.png");
    }
};

TEST_F(ChoiceSessionTest, AChoiceIsOneStepAndWhatFillWrites)
{
    ViewSession session(freeSettings());
    EXPECT_THAT(session.chooseObstacle(), HasSubstr("paint"));
    EXPECT_THROW(session.startChoosing(Fill::Effort::Quick), Render::UsageError);
    paintTwoAreas(session);
    const LoadedPicture before = saved(session);
    const ParameterValue blocks = session.value("blockSize");
    EXPECT_EQ(session.chooseObstacle(), "");
    choose(session);
    EXPECT_NE(session.value("blockSize"), blocks) << "the panel shows the first step's";
    EXPECT_THAT(session.listText(), HasSubstr("2 areas have settings of their own"));
    EXPECT_THAT(session.takeMessages(), Contains(HasSubstr("score")));
    const LoadedPicture chosen = expectTheCommandAgrees(session);
    EXPECT_NE(chosen, before);
    EXPECT_EQ(pasted("tesseret fill --effort quick --threads 2 --source " + in("a.png") +
                         " --matte " + in("painted.png") + " --output " + in("f.png"),
                     "f.png"),
              chosen);
    session.undo();
    EXPECT_EQ(session.value("blockSize"), blocks);
    EXPECT_EQ(session.listText(), "");
    EXPECT_EQ(saved(session), before);
    session.redo();
    EXPECT_EQ(saved(session), chosen);
    session.dropList();
    EXPECT_EQ(session.listText(), "");
    EXPECT_NE(session.value("blockSize"), blocks) << "of the panel, for all";
    expectTheCommandAgrees(session);
    session.undo();
    EXPECT_EQ(saved(session), chosen);
}

TEST_F(ChoiceSessionTest, PaintAfterAChoiceIsFilledAndLeavesTheRest)
{
    ViewSession session(freeSettings());
    paintTwoAreas(session);
    choose(session);
    const LoadedPicture chosen = saved(session);
    paintBox(session, {10, 80}, {30, 100});  // counts between the two
    const LoadedPicture three = expectTheCommandAgrees(session);
    EXPECT_NE(three, chosen);
    const auto changes = [&](const LoadedPicture& picture, int x1, int y1, int x2, int y2) {
        for (int y = y1; y < y2; ++y) {
            for (int x = x1; x < x2; ++x) {
                if (picture.at(x, y, 0) != chosen.at(x, y, 0)) return true;
            }
        }
        return false;
    };
    EXPECT_TRUE(changes(three, 10, 60, 30, 80));
    EXPECT_FALSE(changes(three, 100, 30, 160, 80)) << "the upper area keeps its own settings";
    EXPECT_FALSE(changes(three, 60, 100, 80, 150)) << "and so does the lower one";
    session.undo();
    EXPECT_EQ(saved(session), chosen);

    session.paint([](MattePaint& paint) { fillRectangle(paint, {35, 15}, {75, 60}, true); });
    const LoadedPicture one = expectTheCommandAgrees(session);
    EXPECT_TRUE(changes(one, 40, 110, 70, 140)) << "an erased area is not filled";
    EXPECT_FALSE(changes(one, 110, 40, 150, 70));
    session.paint([](MattePaint& paint) { clearMatte(paint); });
    EXPECT_EQ(saved(session), load(in("a.png")));
    session.undo();
    session.undo();
    EXPECT_EQ(saved(session), chosen);
}

TEST_F(ChoiceSessionTest, AValueThatIsSetOverridesAllSteps)
{
    ViewSession session(freeSettings());
    paintTwoAreas(session);
    choose(session);
    const LoadedPicture chosen = expectTheCommandAgrees(session);
    session.saveParameters(in("chosen.json"));
    session.set("seed", 4321);
    const LoadedPicture other = expectTheCommandAgrees(session);
    EXPECT_EQ(rendered("chosen.json", "seed=4321"), other);
    EXPECT_NE(other, chosen);
    session.undo();
    EXPECT_EQ(saved(session), chosen);

    session.setSampleBox({10.0, 60.0, 90.0, 150.0});
    expectTheCommandAgrees(session);
    EXPECT_TRUE(session.usesSampleBox());
    EXPECT_THAT(session.commandText(), Not(HasSubstr("texture1Crop"))) << "the box counts";
    session.undo();
    EXPECT_EQ(saved(session), chosen) << "one step";
    session.loadParameters(in("p.json"));
    session.undo();
    session.set("fillRegion", 0);
    EXPECT_EQ(session.listText(), "") << "the whole picture has one setting";
    const LoadedPicture whole = saved(session);
    EXPECT_EQ(pasted(session.commandText(), "o.png"), whole);
}

TEST_F(ChoiceSessionTest, ListsAreLoadedFromFiles)
{
    ViewSession session(freeSettings());
    paintTwoAreas(session);
    choose(session);
    const LoadedPicture chosen = expectTheCommandAgrees(session);
    session.saveParameters(in("chosen.json"));

    Render::RenderSettings given = freeSettings("painted.png");
    given.parameterFile = in("chosen.json");
    ViewSession opened(given);
    EXPECT_THAT(opened.listText(), HasSubstr("2 areas"));
    EXPECT_EQ(saved(opened), chosen);
    given.parameters = {"seed=77"};
    ViewSession overridden(given);
    EXPECT_EQ(saved(overridden), rendered("chosen.json", "seed=77"));

    ViewSession later(freeSettings("painted.png"));
    const LoadedPicture plain = saved(later);
    later.loadParameters(in("chosen.json"));
    EXPECT_EQ(saved(later), chosen);
    later.undo();
    EXPECT_FALSE(later.canUndo());
    EXPECT_EQ(saved(later), plain);
}

TEST_F(ChoiceSessionTest, EachVariationIsOneStep)
{
    ViewSession session(freeSettings());
    paintBox(session, {40, 20}, {80, 60});
    choose(session, Fill::Effort::Normal);
    const std::size_t count = session.variations().size();
    ASSERT_GT(count, 1u);
    EXPECT_EQ(session.currentVariation(), 0u) << "the best";
    const LoadedPicture best = expectTheCommandAgrees(session);
    session.pickVariation(count - 1);
    EXPECT_EQ(session.currentVariation(), count - 1);
    EXPECT_NE(expectTheCommandAgrees(session), best);
    session.set("seed", 9999);
    EXPECT_FALSE(session.currentVariation());
    session.undo();
    EXPECT_EQ(session.currentVariation(), count - 1);
    session.undo();
    EXPECT_EQ(session.currentVariation(), 0u);
    EXPECT_EQ(saved(session), best);
    session.paint([](MattePaint& paint) { clearMatte(paint); });
    EXPECT_THROW(session.pickVariation(1), Render::UsageError);
}

TEST_F(ChoiceSessionTest, AStoppedSearchGivesTheBestSoFar)
{
    ViewSession session(freeSettings());
    paintTwoAreas(session);
    const LoadedPicture before = saved(session);
    std::atomic<int> trials = 0;
    session.search().setOnChange([&] {
        if (++trials == 3) session.search().stop();
    });
    session.startChoosing(Fill::Effort::Best);
    session.search().wait();
    EXPECT_LT(trials, 50);
    EXPECT_TRUE(session.takeChoice());
    EXPECT_THAT(session.takeMessages(), Contains(HasSubstr("Stopped")));
    EXPECT_NE(expectTheCommandAgrees(session), before);
    session.undo();
    EXPECT_EQ(saved(session), before);

    session.search().setOnChange(nullptr);
    session.startChoosing(Fill::Effort::Best);
    EXPECT_TRUE(session.search().isBusy());
}  // the session may end while a search runs

TEST_F(ChoiceSessionTest, WhatChangesMeanwhileStays)
{
    ViewSession session(freeSettings());
    paintTwoAreas(session);
    session.startChoosing(Fill::Effort::Quick);
    session.set("seed", 4321);
    session.beginPaint();
    fillRectangle(session.matte()->paint(), {10, 80}, {30, 100}, false);
    session.search().wait();
    EXPECT_FALSE(session.takeChoice()) << "while a stroke is drawn";
    session.endPaint();
    EXPECT_TRUE(session.takeChoice());
    EXPECT_EQ(session.value("seed"), ParameterValue(4321));
    EXPECT_THAT(session.listText(), HasSubstr("2 areas"));
    expectTheCommandAgrees(session);
    session.undo();
    EXPECT_EQ(session.listText(), "");
    EXPECT_EQ(session.value("seed"), ParameterValue(4321)) << "set before";

    session.startChoosing(Fill::Effort::Quick);
    session.paint([](MattePaint& paint) { clearMatte(paint); });
    session.search().wait();
    session.takeMessages();
    EXPECT_TRUE(session.takeChoice());
    EXPECT_THAT(session.takeMessages(), Contains(HasSubstr("gone")));
    EXPECT_EQ(session.listText(), "");
}

TEST_F(ChoiceSessionTest, WhatIsGivenStays)
{
    Render::RenderSettings given = freeSettings();
    given.parameters = {"blockSize=33", "overlap=7"};
    ViewSession session(given);
    paintBox(session, {110, 90}, {150, 120});
    session.set("blockSize", 35);
    session.setSampleBox({0.0, 0.0, 90.0, 80.0});
    const OfxRectI box = *session.sampleBox();
    choose(session);
    EXPECT_EQ(session.value("blockSize"), ParameterValue(35)) << "as it is in the panel";
    EXPECT_EQ(session.value("overlap"), ParameterValue(7));
    EXPECT_EQ(session.sampleBox()->x2, box.x2);
    EXPECT_TRUE(session.usesSampleBox());
    expectTheCommandAgrees(session);
}

TEST_F(ChoiceSessionTest, ForeignPluginsHaveNothingToChoose)
{
    ViewSession session(foreign(INVERT_PLUGIN));
    EXPECT_THAT(session.chooseObstacle(), HasSubstr("no settings"));
    EXPECT_FALSE(session.takeChoice());
}

}  // namespace
}  // namespace Tesseret::Viewer
