/// What helps the user along: the line of advice, completed paths, the pen caught at the box, and
/// the play button.

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fixtures/TemporaryFolder.h"
#include "viewer/model/NextStep.h"
#include "viewer/model/PathCompletion.h"
#include "viewer/model/PenSnap.h"
#include "viewer/model/Playback.h"

namespace Tesseret::Viewer {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

TEST(NextStep, ChangesWithTheState)
{
    Progress progress;
    EXPECT_THAT(nextStep(progress), StartsWith("Open a picture"));
    progress.hasPicture = progress.showsSource = true;
    EXPECT_THAT(nextStep(progress), StartsWith("Paint over what should go"));
    progress.isDrawing = true;
    EXPECT_THAT(nextStep(progress), HasSubstr("Let go"));
    progress.isDrawing = progress.showsSource = false;
    progress.fillsRegion = progress.fillsMatte = progress.hasPaint = true;
    progress.isRendering = true;
    EXPECT_THAT(nextStep(progress), StartsWith("Filling"));
    progress.isRendering = false;
    EXPECT_THAT(nextStep(progress), HasSubstr("Save it (Ctrl+S)"));
    EXPECT_THAT(nextStep(progress), HasSubstr("choose settings (C)"));
    progress.isChoosing = true;
    EXPECT_THAT(nextStep(progress), HasSubstr("Escape stops"));
    progress.isChoosing = false;
    progress.hasChosen = progress.hasFills = true;
    EXPECT_THAT(nextStep(progress), HasSubstr("another fill below"));
    progress.areas = 3;
    EXPECT_THAT(nextStep(progress), StartsWith("3 areas"));
    progress.isSaved = true;
    EXPECT_THAT(nextStep(progress), StartsWith("Saved"));
    progress.hasPaint = false;
    EXPECT_THAT(nextStep(progress), StartsWith("Nothing is painted"));
    progress = {.hasPicture = true, .showsSource = true, .obstacle = "because"};
    EXPECT_THAT(nextStep(progress), HasSubstr("because"));
}

class PathCompletionTest : public testing::Test {
protected:
    PathCompletionTest()
    {
        fs::create_directory(folder_ / "photos");
        for (const char* name : {"plate-one.png", "plate-two.png", ".hidden", "photos/b.jpg",
                                 "caf\xc3\xa9", "caf\xc3\xa8"}) {
            std::ofstream(folder_ / name) << "x";
        }
    }
    std::string in(const std::string& name) const { return (folder_ / "").string() + name; }

    Fixtures::TemporaryFolder folder_;
};

TEST_F(PathCompletionTest, CompletesAsFarAsItIsCertain)
{
    EXPECT_EQ(completePath(in("pla")).text, in("plate-"));
    EXPECT_THAT(completePath(in("pla")).names, ElementsAre("plate-one.png", "plate-two.png"));
    EXPECT_EQ(completePath(in("plate-t")).text, in("plate-two.png"));
    EXPECT_EQ(completePath(in("ph")).text, in("photos/"));
    EXPECT_THAT(completePath(in("photos/")).names, ElementsAre("b.jpg"));
    EXPECT_EQ(completePath(in("caf")).text, in("caf")) << "not half of a letter";
    EXPECT_THAT(completePath(in("")).names, testing::Not(testing::Contains(".hidden")));
    EXPECT_EQ(completePath(in(".h")).text, in(".hidden"));
    EXPECT_EQ(completePath(in("none/x")).text, in("none/x"));
    EXPECT_THAT(completePath(in("none/x")).names, IsEmpty());
    EXPECT_EQ(withName(in("pla"), "photos/"), in("photos/"));
}

TEST_F(PathCompletionTest, KnowsTheHomeFolderAndTheCurrentOne)
{
    const std::string home = std::getenv("HOME") == nullptr ? "" : std::getenv("HOME");
    setenv("HOME", folder_.path().c_str(), 1);
    EXPECT_EQ(completePath("~/pho").text, "~/photos/");
    EXPECT_EQ(expandHome("~/a.png"), (folder_ / "a.png").string());
    EXPECT_EQ(expandHome("a~/b"), "a~/b");
    setenv("HOME", home.c_str(), 1);
    const fs::path before = fs::current_path();
    fs::current_path(folder_.path());
    EXPECT_EQ(completePath("pho").text, "photos/");
    fs::current_path(before);
}

TEST(PenSnap, CatchesEdgesCornersAndTheCentre)
{
    const OfxRectD box{100, 200, 500, 400};
    const auto snapped = [&](double x, double y) {
        const OfxPointD pen = snappedPen({x, y}, box, 30.0);
        return std::pair{pen.x, pen.y};
    };
    EXPECT_EQ(snapped(80, 300), std::pair(100.0, 300.0));
    EXPECT_EQ(snapped(125, 260), std::pair(100.0, 260.0));
    EXPECT_EQ(snapped(300, 425), std::pair(300.0, 400.0));
    EXPECT_EQ(snapped(510, 190), std::pair(500.0, 200.0)) << "a corner";
    EXPECT_EQ(snapped(480, 225), std::pair(500.0, 200.0));
    EXPECT_EQ(snapped(315, 285), std::pair(300.0, 300.0)) << "the cross";
    EXPECT_EQ(snapped(200, 350), std::pair(200.0, 350.0)) << "in the open";
    EXPECT_EQ(snapped(60, 300), std::pair(60.0, 300.0));
    EXPECT_EQ(snapped(90, 460), std::pair(90.0, 460.0));
    const OfxPointD small = snappedPen({104, 203}, {100, 200, 108, 206}, 30.0);
    EXPECT_EQ(small.x, 104.0) << "a small box can still be moved by its centre";
    EXPECT_EQ(small.y, 203.0);
}

TEST(Playback, WaitsForTheFrameAndForItsTime)
{
    Playback playback;
    const Playback::Clock::time_point start{};
    EXPECT_FALSE(playback.isDue(true, start + Playback::kFrameTime));
    playback.toggle(start);
    EXPECT_FALSE(playback.isDue(true, start));
    EXPECT_FALSE(playback.isDue(false, start + 2 * Playback::kFrameTime));
    EXPECT_TRUE(playback.isDue(true, start + 2 * Playback::kFrameTime));
    EXPECT_FALSE(playback.isDue(true, start + 2 * Playback::kFrameTime));
    playback.toggle(start);
    EXPECT_FALSE(playback.isPlaying());
}

}  // namespace
}  // namespace Tesseret::Viewer
