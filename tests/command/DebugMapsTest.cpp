#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fixtures/CommandRun.h"
#include "tests/fixtures/TemporaryFolder.h"
#include "tests/fixtures/TestPictures.h"

namespace Tesseret::Command {

using namespace Fixtures;

namespace {

namespace fs = std::filesystem;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

/// A picture of noise and a matte to its lower left.
class DebugMapsTest : public testing::Test {
protected:
    DebugMapsTest()
    {
        paint(in("a.png"), 200, 150, noise(1));
        paint(in("matte.png"), 200, 150, [](int x, int y) {
            return std::vector{x >= 40 && x < 70 && y >= 90 && y < 120 ? 255 : 0};
        });
    }
    std::string in(const std::string& name) const { return (folder_ / name).string(); }

    Outcome render(CommandRun::Arguments more) const
    {
        more.insert(more.begin(),
                    {"render", "-s", in("a.png"), "-m", in("matte.png"), "-o", in("out.png"),
                     "--matte-window", "full", "pathWidth=2", "edgeBlend=1", "blockSize=40"});
        return run(more);
    }

    std::vector<std::string> namesIn(const std::string& folder) const
    {
        std::vector<std::string> all;
        for (const auto& entry : fs::directory_iterator(in(folder))) {
            all.push_back(entry.path().filename().string());
        }
        return all;
    }

    TemporaryFolder folder_;
};

TEST_F(DebugMapsTest, ShowWhatTheFillWasMadeWith)
{
    ASSERT_EQ(render({}).code, 0);
    const LoadedPicture unwatched = load(in("out.png"));
    const Outcome outcome = render({"--debug-maps", in("new/maps"), "luminanceMatch=on"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.err, ContainsRegex("luminance-gain.png: gain [0-9.]+ to [0-9.]+; blue"));
    EXPECT_THAT(
        namesIn("new/maps"),
        UnorderedElementsAre("fill-mask.png", "path-band.png", "blocks.png", "boundary-path.png",
                             "composite-mask.png", "luminance-gain.png"));
    const LoadedPicture mask = load(in("new/maps/fill-mask.png"));
    EXPECT_EQ(mask.channels, 1);
    // The whole matte with its rim of one pixel, and 5 times the path and its blend around.
    const int left = 1 + 15, top = 1 + 15;
    for (const std::string& name : namesIn("new/maps")) {
        const LoadedPicture picture = load(in("new/maps/" + name));
        EXPECT_EQ(picture.width, 200 + 2 * left) << name;
        EXPECT_EQ(picture.height, 150 + 2 * top) << name;
        // Read as their place, which OpenImageIO takes from the offset.
        EXPECT_EQ(picture.x, -left) << name;
        EXPECT_EQ(picture.y, -top) << name;
    }
    EXPECT_EQ(mask.at(left + 40, top + 90, 0), 255);
    EXPECT_EQ(mask.at(left + 69, top + 119, 0), 255);
    EXPECT_EQ(mask.at(left + 39, top + 90, 0), 0);
    EXPECT_EQ(mask.at(left + 69, top + 120, 0), 0);
    EXPECT_EQ(load(in("new/maps/composite-mask.png")).at(left + 55, top + 105, 0), 255);

    // Maps of an earlier render that this one does not make are removed.
    ASSERT_EQ(render({"--debug-maps", in("new/maps")}).code, 0);
    EXPECT_EQ(load(in("out.png")), unwatched);
    EXPECT_EQ(namesIn("new/maps").size(), 5u);
    EXPECT_THAT(namesIn(""), UnorderedElementsAre("a.png", "matte.png", "out.png", "new"));
}

TEST_F(DebugMapsTest, OfSeveralAreasBearTheArea)
{
    paint(in("two.png"), 200, 150,
          [](int x, int y) { return std::vector{x >= 40 && x < 70 && y % 60 >= 30 ? 255 : 0}; });
    const Outcome outcome =
        run({"render", "-s", in("a.png"), "-m", in("two.png"), "-o", in("out.png"), "--debug-maps",
             in("maps"), "pathWidth=2", "edgeBlend=1"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(namesIn("maps").size(), 10u);
    for (const char* name : {"maps/area1_fill-mask.png", "maps/area2_fill-mask.png"}) {
        EXPECT_EQ(load(in(name)).width, 30 + 2 * (1 + 15)) << name;  // the area's box
        EXPECT_EQ(load(in(name)).x, 40 - (1 + 15)) << name;
    }
}

TEST_F(DebugMapsTest, OfASequenceBearTheFrame)
{
    const Outcome outcome =
        run({"render", "-s", in("a.png"), "-m", in("matte.png"), "-o", in("o#.png"), "-f", "0,12",
             "--debug-maps", in("maps"), "--matte-window", "full", "temporalConsistancy=on",
             "pathWidth=2", "edgeBlend=1"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(namesIn("maps"),
                UnorderedElementsAre("0000_fill-mask.png", "0000_path-band.png", "0000_blocks.png",
                                     "0000_boundary-path.png", "0000_composite-mask.png",
                                     "0012_blocks.png", "0012_composite-mask.png"));
    // The same blocks; those in the margin above and to the right of the picture are not placed.
    const LoadedPicture laid = load(in("maps/0000_blocks.png"));
    const LoadedPicture again = load(in("maps/0012_blocks.png"));
    for (int y = 16; y < laid.height; ++y) {
        for (int x = 0; x < 16 + 200; ++x) {
            for (const int c : {0, 1, 2}) ASSERT_EQ(laid.at(x, y, c), again.at(x, y, c));
        }
    }
}

TEST_F(DebugMapsTest, OfAFullDiskAreThoseOfBefore)
{
    const CommandRun::Arguments arguments{"render",        "-s",      in("a.png"),    "-m",
                                          in("matte.png"), "-o",      in("out.png"),  "--quiet",
                                          "--window",      "0,0,4,4", "--debug-maps", in("maps")};
    ASSERT_EQ(run(arguments).code, 0);
    ASSERT_LT(fs::file_size(in("out.png")), 1000u);
    ASSERT_GT(fs::file_size(in("maps/blocks.png")), 1000u);
    const LoadedPicture before = load(in("maps/blocks.png"));
    CommandRun::Arguments others = arguments;
    others.emplace_back("seed=2");
    const Outcome full = runProgram(others, 1000);
    EXPECT_EQ(full.code, 1);
    EXPECT_THAT(full.err, ContainsRegex("^tesseret: .*/maps/.*png: cannot be written: .*\n$"));
    EXPECT_EQ(load(in("maps/blocks.png")), before);
    EXPECT_EQ(namesIn("maps").size(), 5u);
    EXPECT_EQ(load(in("out.png")).width, 4);
}

TEST_F(DebugMapsTest, RefuseAFolderThatCannotServe)
{
    fs::create_directory(in("maps"));
    fs::copy_file(in("matte.png"), in("maps/area1_fill-mask.png"));
    struct Case {
        CommandRun::Arguments arguments;
        const char* said;
    };
    const Case cases[] = {
        {{"--debug-maps", in("a.png")}, "a.png"},
        {{"--debug-maps", in("a.png/maps")}, "cannot be created"},
        {{"--debug-maps", in("maps"), "-m", in("maps/area1_fill-mask.png")},
         "one of the input files"},
        {{"--debug-maps", in("maps"), "-o", in("maps/../maps/blocks.png")}, "name of a map"},
    };
    for (const auto& [arguments, said] : cases) {
        CommandRun::Arguments all{"render", "-s", in("a.png")};
        all.insert(all.end(), arguments.begin(), arguments.end());
        if (!std::string(said).starts_with("name")) all.insert(all.end(), {"-o", in("out.png")});
        const Outcome outcome = run(all);
        EXPECT_EQ(outcome.code, 2) << said;
        EXPECT_THAT(outcome.err, HasSubstr(said));
    }
    EXPECT_FALSE(fs::exists(in("out.png")));
    const std::string other = in("maps/building_blocks.png");  // none of the maps' names
    EXPECT_EQ(run({"render", "-s", in("a.png"), "-o", other, "--debug-maps", in("maps")}).code, 0);
    EXPECT_EQ(load(in("maps/area1_fill-mask.png")), load(in("matte.png")));
}

}  // namespace
}  // namespace Tesseret::Command
