#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include "tests/fixtures/RenderFixture.h"

namespace Tesseret::Command {

using namespace Fixtures;

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;

std::vector<int> quadrant(int x, int y, int half)
{
    if (y < half) return x < half ? std::vector{200, 0, 0} : std::vector{0, 200, 0};
    return x < half ? std::vector{0, 0, 200} : std::vector{90, 90, 90};
}

Painter quadrants(int half)
{
    return [half](int x, int y) { return quadrant(x, y, half); };
}

std::string contents(const fs::path& file)
{
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

using RenderTest = RenderFixture;

TEST_F(RenderTest, SaysWhatItDid)
{
    paint(in("a.png"), 96, 64, noise(1));
    const Outcome normal =
        runProgram({"render", "--source", in("a.png"), "--output", in("normal.png")});
    EXPECT_EQ(normal.code, 0) << normal.err;
    EXPECT_THAT(normal.out, StartsWith(in("normal.png")));
    EXPECT_THAT(normal.err, IsEmpty());

    const Outcome quiet = render("a.png", "quiet.png", {"--quiet"});
    EXPECT_EQ(quiet.code, 0);
    EXPECT_THAT(quiet.out + quiet.err, IsEmpty());

    const Outcome verbose = render("a.png", "verbose.png", {"--verbose", "--threads", "1"});
    EXPECT_THAT(verbose.out, AllOf(ContainsRegex("quilt +1 "), ContainsRegex("blocks +[1-9]"),
                                   ContainsRegex("peak memory  [1-9]"), HasSubstr("threads 1"),
                                   HasSubstr("read  "), HasSubstr("write  ")));

    const LoadedPicture picture = load(in("normal.png"));
    EXPECT_EQ(picture.width, 96);
    EXPECT_EQ(picture.height, 64);
    EXPECT_EQ(picture.channels, 3);
    EXPECT_EQ(picture, load(in("quiet.png")));
    EXPECT_NE(picture, load(in("a.png")));
}

TEST_F(RenderTest, ParametersReachThePlugin)
{
    paint(in("a.png"), 96, 64, noise(1));
    const auto rendered = [&](const CommandRun::Arguments& parameters) {
        const Outcome outcome = render("a.png", "out.png", parameters);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return load(in("out.png"));
    };
    const LoadedPicture standard = rendered({});
    EXPECT_EQ(rendered({"fillRegion=Entire Image", "seed=1"}), standard);
    EXPECT_EQ(rendered({"fillRegion=0", "luminanceMatch=off"}), standard);
    EXPECT_EQ(rendered({"sampleCorner1=0.2,0.2", "sampleCorner2=0.8,0.8"}), standard);
    EXPECT_NE(rendered({"seed=7"}), standard);
    EXPECT_NE(rendered({"blockSize=40", "overlap=8"}), standard);
}

// Every block comes from the box that an image viewer shows at these pixels.
TEST_F(RenderTest, SampleBoxCountsFromTheUpperLeft)
{
    constexpr int kHalf = 40;
    struct Case {
        const char* box;
        int x, y;
    };
    paint(in("source.png"), 2 * kHalf, 2 * kHalf, quadrants(kHalf));
    paint(in("plate.png"), 120, 70, [](int, int) { return std::vector{1, 1, 1}; });
    for (const auto& [box, x, y] :
         {Case{"1,2,39,38", 0, 0}, Case{"40,0,80,40", kHalf, 0}, Case{"0,40,40,80", 0, kHalf}}) {
        SCOPED_TRACE(box);
        for (const bool fromTexture : {false, true}) {
            CommandRun::Arguments more{"--sample-box", box, "blockSize=30", "overlap=4"};
            if (fromTexture) more.insert(more.end(), {"--texture1", in("source.png")});
            const Outcome outcome =
                render(fromTexture ? "plate.png" : "source.png", "out.png", more);
            ASSERT_EQ(outcome.code, 0) << outcome.err;
            EXPECT_THAT(outcome.err, IsEmpty());
            const LoadedPicture picture = load(in("out.png"));
            const std::vector<int> wanted = quadrant(x, y, kHalf);
            int others = 0;
            for (int row = 0; row < picture.height; ++row) {
                for (int column = 0; column < picture.width; ++column) {
                    for (int c = 0; c < 3; ++c) {
                        others += picture.at(column, row, c) != wanted[static_cast<std::size_t>(c)];
                    }
                }
            }
            EXPECT_EQ(others, 0) << (fromTexture ? "texture" : "source");
        }
    }
}

TEST_F(RenderTest, WithoutABoxTheMiddleOfASmallTextureIsTaken)
{
    const auto isMiddle = [](int i) { return i >= 8 && i < 32; };
    paint(in("small.png"), 40, 40, [&](int x, int y) {
        return isMiddle(x) && isMiddle(y) ? std::vector{10, 200, 30} : std::vector{250, 0, 0};
    });
    paint(in("plate.png"), 120, 70, [](int, int) { return std::vector{1, 1, 1}; });
    const Outcome outcome = render("plate.png", "out.png", {"--texture1", in("small.png")});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    const LoadedPicture picture = load(in("out.png"));
    for (int y = 0; y < 70; ++y) {
        for (int x = 0; x < 120; ++x) ASSERT_EQ(picture.at(x, y, 1), 200) << x << ' ' << y;
    }
}

// Another plug-in shows the exact place of every pixel.
TEST_F(RenderTest, WindowAndScaleCutTheRightPixels)
{
    const auto invert = [&](const std::string& output, CommandRun::Arguments more) {
        more.insert(more.end(), {"--plugin", INVERT_PLUGIN});
        const Outcome outcome = render("a.png", output, more);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return load(in(output));
    };
    paint(in("a.png"), 20, 10, noise(3));
    const LoadedPicture source = load(in("a.png"));
    const LoadedPicture part = invert("part.png", {"--window", "2,3,9,8"});
    EXPECT_EQ(part.width, 7);
    EXPECT_EQ(part.height, 5);
    for (const int c : {0, 1, 2}) EXPECT_EQ(part.at(1, 4, c), 255 - source.at(3, 7, c));

    const LoadedPicture placed = invert("part.exr", {"--window", "2,3,9,8"});
    EXPECT_EQ(placed.x, 2);
    EXPECT_EQ(placed.y, 3);
    EXPECT_EQ(placed.width, 7);

    const LoadedPicture half = invert("half.png", {"--render-scale", "0.5"});
    EXPECT_EQ(half.width, 10);
    EXPECT_EQ(half.height, 5);
    const int sum =
        source.at(4, 6, 0) + source.at(5, 6, 0) + source.at(4, 7, 0) + source.at(5, 7, 0);
    EXPECT_NEAR(half.at(2, 3, 0), 255.0 - sum / 4.0, 1.0);
}

TEST_F(RenderTest, SaysWhatIsUsedOfABoxThatReachesBeyond)
{
    paint(in("a.png"), 64, 48, noise(1));
    const CommandRun::Arguments blocks{"blockSize=30", "overlap=4", "--quiet"};
    for (const char* option : {"--window", "--sample-box"}) {
        SCOPED_TRACE(option);
        const auto rendered = [&](const char* box, const std::string& said) {
            CommandRun::Arguments more{option, box};
            more.insert(more.end(), blocks.begin(), blocks.end());
            const Outcome outcome = render("a.png", "out.png", more);
            EXPECT_EQ(outcome.code, 0);
            EXPECT_EQ(outcome.err, said);
            return load(in("out.png"));
        };
        const LoadedPicture inside = rendered("20,0,64,40", "");
        EXPECT_EQ(rendered("20,-3.5,90,40", "tesseret: note: " + std::string(option) +
                                                ": the box 20,-3.5,90,40 reaches beyond the "
                                                "pixels of " +
                                                in("a.png") + "; 20,0,64,40 is used\n"),
                  inside);
    }
}

TEST_F(RenderTest, MattesAndTexturesChooseTheContext)
{
    paint(in("a.png"), 64, 64, noise(1));
    paint(in("matte.png"), 64, 64, [](int x, int) { return std::vector{x < 30 ? 255 : 0}; });
    const Outcome matte = render("a.png", "out.png", {"--matte", in("matte.png"), "--verbose"});
    EXPECT_EQ(matte.code, 0);
    EXPECT_THAT(matte.out, HasSubstr("General"));
    const Outcome plain = render("a.png", "out.png", {"--verbose"});
    EXPECT_THAT(plain.out, HasSubstr("Filter"));

    // A grey picture with colour blocks becomes a colour picture.
    paint(in("grey.png"), 64, 64, [](int x, int) { return std::vector{x}; });
    EXPECT_EQ(render("grey.png", "out.png").code, 0);
    EXPECT_EQ(load(in("out.png")).channels, 1);
    const Outcome texture = render("grey.png", "out.png", {"--texture2", in("a.png")});
    EXPECT_EQ(texture.code, 0) << texture.err;
    EXPECT_EQ(load(in("out.png")).channels, 3);
}

TEST_F(RenderTest, DepthGoesFromFileToFile)
{
    paint(in("a.png"), 64, 64, noise(1));
    for (const auto& [depth, verbose] : {std::pair{"byte", "render       Filter, byte"},
                                         {"short", "render       Filter, short"},
                                         {"float", "render       Filter, float"}}) {
        const Outcome outcome = render("a.png", "out.tif", {"--depth", depth, "--verbose"});
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_THAT(outcome.out, HasSubstr(verbose));
    }
}

TEST_F(RenderTest, SequencesComeOutInOrderOnOneInstance)
{
    for (int frame = 8; frame <= 11; ++frame) {
        paint(in(numbered("p.%04d.png", frame)), 64, 64, noise(frame));
    }
    const Outcome outcome = render("p.####.png", "o.%04d.png", {"--frames", "8-11"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.out, ContainsRegex("o.0008.png  1 of 4 .*\n.*o.0009.png  2 of 4 .*\n"
                                           ".*o.0010.png  3 of 4 .*\n.*o.0011.png  4 of 4 "));
    for (int frame = 8; frame <= 11; ++frame) {
        EXPECT_EQ(render(numbered("p.%04d.png", frame), "still.png").code, 0);
        EXPECT_EQ(load(in(numbered("o.%04d.png", frame))), load(in("still.png"))) << frame;
    }
}

TEST_F(RenderTest, ABrokenFrameEndsTheSequenceThere)
{
    for (const char* name : {"p1.png", "p2.png", "p3.png"}) paint(in(name), 64, 64, noise(1));
    fs::resize_file(in("p2.png"), fs::file_size(in("p2.png")) / 2);
    const Outcome outcome = render("p#.png", "o#.png", {"--frames", "1-3"});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_THAT(outcome.err, AllOf(HasSubstr(in("p2.png")), HasSubstr("damaged")));
    EXPECT_THAT(names(), testing::IsSubsetOf({"p1.png", "p2.png", "p3.png", "o1.png"}));
}

TEST_F(RenderTest, AnInterruptStopsTheRender)
{
    for (int frame = 1; frame <= 9; ++frame) {
        paint(in(numbered("p%d.png", frame)), 400, 400, noise(frame));
    }
    // Each frame takes long enough for the interrupt to come during a render.
    CommandRun command(
        {"render", "-s", in("p#.png"), "-o", in("o#.png"), "-f", "1-9", "numSamples=200"});
    command.waitForLines(1);
    command.signal(SIGINT);
    const Outcome outcome = command.finish();
    EXPECT_EQ(outcome.code, 130);
    EXPECT_EQ(outcome.err, "tesseret: interrupted\n");
    EXPECT_FALSE(fs::exists(in("o9.png")));
    for (const std::string& name : names()) {
        EXPECT_THAT(name, ContainsRegex("^[po][1-9].png$"));
        EXPECT_EQ(load(in(name)).width, 400);
    }
}

TEST_F(RenderTest, FailedRendersExitWithOneAndLeaveNothing)
{
    paint(in("a.png"), 64, 64, noise(1));
    const Outcome failed = render("a.png", "out.png", {"--plugin", FAILING_PLUGIN});
    EXPECT_EQ(failed.code, 1);
    EXPECT_THAT(failed.err, AllOf(HasSubstr("the render failed"), HasSubstr("lens is cracked")));
    EXPECT_THAT(names(), UnorderedElementsAre("a.png"));
}

TEST_F(RenderTest, AFullDiskLeavesTheResultOfBefore)
{
    paint(in("a.png"), 64, 64, noise(1));
    for (const char* name : {"out.png", "out.jpg", "out.tif", "out.dpx", "out.exr"}) {
        SCOPED_TRACE(name);
        ASSERT_EQ(render("a.png", name).code, 0);
        const std::string before = contents(in(name));
        const Outcome full =
            runProgram({"render", "-s", in("a.png"), "-o", in(name), "seed=2", "--quiet"}, 1000);
        EXPECT_EQ(full.code, 1);
        EXPECT_EQ(full.err, "tesseret: " + in(name) + ": cannot be written: File too large\n");
        EXPECT_EQ(contents(in(name)), before);
        EXPECT_THAT(names(), UnorderedElementsAre("a.png", name));
        fs::remove(in(name));
    }
}

// Without the module beside the program, PNGs are rendered all the same.
TEST_F(RenderTest, OnlyOtherFormatsNeedOpenImageIo)
{
    paint(in("a.png"), 64, 48, noise(1));
    paint(in("b.tif"), 64, 48, noise(1));
    paint(in("matte.png"), 64, 48, [](int x, int) { return std::vector{x < 20 ? 255 : 0}; });
    const std::string program = in("tesseret");
    fs::copy_file(TESSERET_COMMAND, program);
    const auto run = [&](const std::string& arguments) {
        const std::string command =
            program + " " + arguments + " >" + in("out") + " 2>" + in("err");
        return WEXITSTATUS(std::system(command.c_str()));
    };
    const auto errors = [&] { return contents(in("err")); };
    const auto render = [&](const char* source, const char* output) {
        return run("render --source " + in(source) + " --output " + in(output) + " --plugin " +
                   TESSERET_BUNDLE);
    };
    EXPECT_EQ(run("--version"), 0);
    EXPECT_EQ(run("render -s " + in("a.png") + " -m " + in("matte.png") + " -o " + in("c.png") +
                  " --plugin " + TESSERET_BUNDLE),
              0)
        << errors();
    EXPECT_EQ(load(in("c.png")).width, 64);
    EXPECT_EQ(render("b.tif", "c.png"), 2);
    EXPECT_THAT(errors(), HasSubstr("b.tif: OpenImageIO cannot be loaded: "));
    EXPECT_EQ(render("a.png", "c.exr"), 1);
    EXPECT_THAT(errors(), HasSubstr("c.exr: OpenImageIO cannot be loaded: "));
}

TEST_F(RenderTest, NeverWritesOverWhatItReads)
{
    paint(in("a.png"), 64, 64, noise(1));
    paint(in("t.png"), 64, 64, noise(2));
    fs::create_symlink(in("a.png"), in("symbolic.png"));
    fs::create_hard_link(in("a.png"), in("hard.png"));
    fs::create_directory(in("sub"));
    const std::string before = contents(in("a.png"));
    for (const char* output : {"a.png", "symbolic.png", "hard.png", "sub/../a.png", "t.png"}) {
        const Outcome outcome = render("a.png", output, {"--texture1", in("t.png")});
        EXPECT_EQ(outcome.code, 2) << output;
        EXPECT_THAT(outcome.err, HasSubstr("is one of the input files")) << output;
    }
    EXPECT_EQ(contents(in("a.png")), before);
    EXPECT_EQ(render("a.png", "sub/a.png").code, 0);
    EXPECT_EQ(render("t.png", "sub/a.png").code, 0);  // an older result may be replaced
}

}  // namespace
}  // namespace Tesseret::Command
