#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

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

/// The names of files as they stand on the command line.
class FilesTest : public RenderFixture {
protected:
    FilesTest()
    {
        fs::current_path(folder_.path());
        for (const char* name : {"a.png", "b.png", "wide.png", "a.exr"}) {
            paint(name, name[0] == 'w' ? 200 : 100, 80, noise(name[0]));
        }
        paint("hole.png", 100, 80, [](int x, int y) {
            return std::vector{x >= 40 && x < 50 && y >= 20 && y < 30 ? 255 : 0};
        });
    }
    ~FilesTest() override { fs::current_path("/"); }

    static LoadedPicture rendered(const CommandRun::Arguments& arguments, const std::string& file)
    {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return load(file);
    }
};

TEST_F(FilesTest, WordsAreTheFiles)
{
    const LoadedPicture wanted =
        rendered({"render", "-s", "a.png", "-o", "o.png", "seed=3", "blockSize=30"}, "o.png");
    EXPECT_EQ(rendered({"render", "a.png", "seed=3", "words.png", "blockSize=30"}, "words.png"),
              wanted);
    EXPECT_EQ(rendered({"render", "seed=3", "a.png", "-o", "one.png", "blockSize=30"}, "one.png"),
              wanted);
    const LoadedPicture filled = rendered(
        {"fill", "-s", "a.png", "-m", "hole.png", "-o", "f.png", "--effort", "quick"}, "f.png");
    EXPECT_EQ(rendered({"fill", "a.png", "hole.png", "g.png", "--effort", "quick"}, "g.png"),
              filled);
    EXPECT_THAT(run({"fill", "a.png", "hole.png"}).err, HasSubstr("--output is missing"));
    EXPECT_THAT(run({"fill", "a.png", "hole.png", "o.png", "p.png"}).err,
                HasSubstr("\"p.png\": no more files are expected"));
    EXPECT_THAT(run({"render", "a.png", "hole.png", "o.png"}).err,
                AllOf(HasSubstr("o.png: several sources need a folder"), HasSubstr("--matte")));
}

TEST_F(FilesTest, SeveralPicturesInOneCall)
{
    fs::create_directory("out");
    fs::create_directory("mattes");
    fs::copy_file("hole.png", "mattes/a-hole.png");
    fs::copy_file("hole.png", "mattes/b-hole.png");
    const LoadedPicture wanted = rendered(
        {"render", "b.png", "-m", "hole.png", "-o", "single.png", "blockSize=30"}, "single.png");
    const Outcome outcome =
        run({"render", "a.png", "none.png", "wide.png", "b.png", "-m", "mattes/{name}-hole.png",
             "-o", "out/{name}-clean.png", "blockSize=30"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("out/a-clean.png"), HasSubstr("out/b-clean.png")));
    EXPECT_THAT(outcome.err, AllOf(HasSubstr("none.png: no such file\n"),
                                   HasSubstr("mattes/wide-hole.png: no such file\n"),
                                   HasSubstr("2 of 4 pictures failed: none.png, wide.png\n")));
    EXPECT_EQ(load("out/b-clean.png"), wanted);

    EXPECT_EQ(run({"render", "a.png", "b.png", "out/"}).code, 0);
    EXPECT_TRUE(fs::exists("out/a.png") && fs::exists("out/b.png"));
    EXPECT_EQ(run({"render", "a.png", "-o", "out"}).code, 0);
    EXPECT_THAT(run({"render", "a.png", "./a.png", "out/"}).err,
                HasSubstr("a.png: would be written for several sources"));
}

TEST_F(FilesTest, SequenceWithoutFramesHasAllThereAre)
{
    for (const char* name : {"p.0001.png", "p.0002.png", "p.0010.png", "p.3.png", "p.x.png"}) {
        fs::copy_file("a.png", name);
    }
    const Outcome outcome = run({"render", "p.@@@@.png", "o.@.png"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.out, StartsWith("frames 1-2,10\n"));
    EXPECT_TRUE(fs::exists("o.1.png") && fs::exists("o.2.png") && fs::exists("o.10.png"));
    EXPECT_FALSE(fs::exists("o.3.png"));
    EXPECT_THAT(run({"render", "-q", "p.%04d.png", "o.##.png"}).out, IsEmpty());
    EXPECT_TRUE(fs::exists("o.02.png"));
    fs::copy_file("a.png", "icon@2x.png");  // a picture for a screen, not a sequence
    EXPECT_EQ(run({"render", "icon@2x.png", "o.png"}).code, 0);
}

TEST_F(FilesTest, StandardInputAndOutput)
{
    for (const std::string name : {"a.png", "a.exr"}) {
        const LoadedPicture wanted = rendered({"render", name, "o." + name}, "o." + name);
        const Outcome outcome = runProgram({"render", "-", "-"}, -1, in(name));
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_THAT(outcome.err, ContainsRegex("^standard output  [0-9.]+ s\n$"));
        std::ofstream("piped." + name, std::ios::binary) << outcome.out;
        EXPECT_EQ(load("piped." + name), wanted);
    }
    const Outcome other =
        runProgram({"fill", "-", "hole.png", "exr:-", "--effort", "quick"}, -1, in("a.png"));
    EXPECT_THAT(other.out, StartsWith("\x76\x2f\x31\x01"));
    EXPECT_THAT(other.err, HasSubstr("tesseret render --source - "));

    const Outcome text = runProgram({"render", "-", "-"}, -1, "/proc/version");
    EXPECT_EQ(text.code, 2);
    EXPECT_THAT(text.err, StartsWith("tesseret: standard input: is not a PNG"));
    EXPECT_THAT(runProgram({"render", "-", "-"}).err, HasSubstr("standard input: is empty"));
}

TEST_F(FilesTest, BoxesInPerCent)
{
    const auto boxed = [&](const std::string& option, const std::string& box) {
        return rendered(
            {"render", "a.png", "o.png", "--texture1", "wide.png", option, box, "blockSize=30"},
            "o.png");
    };
    // Of the texture, which is wider than the source.
    EXPECT_EQ(boxed("--sample-box", "10%,50%,60%,100%"), boxed("--sample-box", "20,40,120,80"));
    EXPECT_EQ(boxed("--texture1-crop", "25%,0,75.2%,80"), boxed("--texture1-crop", "50,0,150,80"));
    EXPECT_EQ(boxed("--window", "25%,0,75%,80"), boxed("--window", "25,0,75,80"));
    EXPECT_NE(boxed("--sample-box", "10%,50%,60%,100%"), boxed("--sample-box", "10,40,60,80"));
}

TEST_F(FilesTest, DryRunSaysWhatARenderDoes)
{
    paint("large.png", 240, 200, noise(5));
    paint("two.png", 240, 200, [](int x, int y) {
        return std::vector{x >= 40 && x < 70 && y % 100 >= 50 && y % 100 < 70 ? 255 : 0};
    });
    const CommandRun::Arguments command{"render",  "large.png", "o.png",       "--matte",
                                        "two.png", "--json",    "blockSize=40"};
    const auto with = [&](const char* option) {
        CommandRun::Arguments arguments = command;
        arguments.emplace_back(option);
        const Outcome outcome = runProgram(arguments);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_THAT(outcome.err, Not(HasSubstr("{")));
        return nlohmann::json::parse(outcome.out)["pictures"][0];
    };
    const auto planned = with("--dry-run");
    EXPECT_FALSE(fs::exists("o.png"));
    EXPECT_EQ(planned["files"], nlohmann::json({"o.png"}));
    ASSERT_EQ(planned["areas"].size(), 2u);
    EXPECT_EQ(planned["areas"][1]["box"], nlohmann::json({40, 50, 70, 70}));
    EXPECT_EQ(planned["areas"][1]["pixels"], 600);
    EXPECT_EQ(planned["areas"][1]["number"], 2);
    EXPECT_THAT(run({"render", "large.png", "o.png", "-m", "two.png", "--dry-run"}).out,
                HasSubstr("area 2       box 40,50,70,70, 600 pixels\n"));

    const auto done = with("--quiet");
    EXPECT_EQ(done["blocks"], planned["steps"][0]["blocks"]);
    EXPECT_EQ(done["areas"][1]["box"], planned["areas"][1]["box"]);
    EXPECT_EQ(done["steps"][0]["parameters"]["blockSize"], 40);
    EXPECT_EQ(done["files"][0]["file"], "o.png");
    EXPECT_GT(done["stages"].size(), 3u);
    EXPECT_TRUE(fs::exists("o.png"));
}

TEST_F(FilesTest, ReportsForPrograms)
{
    fs::create_directory("out");
    paint("a.png", 240, 200, noise(5));
    paint("hole.png", 240, 200, [](int x, int y) {
        return std::vector{x >= 90 && x < 130 && y >= 80 && y < 120 ? 255 : 0};
    });
    const Outcome outcome = runProgram({"fill", "a.png", "none.png", "-m", "hole.png", "-o", "out/",
                                        "--json", "--effort", "quick"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.err, AllOf(HasSubstr("out/a.png  "), HasSubstr("tesseret render ")));
    const auto report = nlohmann::json::parse(outcome.out);
    EXPECT_EQ(report["command"], "fill");
    EXPECT_EQ(report["exitCode"], 1);
    ASSERT_EQ(report["pictures"].size(), 2u);
    const auto& search = report["pictures"][0]["search"];
    EXPECT_EQ(search["areas"][0]["areas"], nlohmann::json({1}));
    EXPECT_GT(search["areas"][0]["score"]["total"], 0.0);
    EXPECT_EQ(report["pictures"][1]["errors"], nlohmann::json({"none.png: no such file"}));
    EXPECT_THAT(run({"render", "a.png", "-", "--json"}).err, HasSubstr("--output a file"));
}

/// One line in our own words for every format, cut at several places.
TEST_F(FilesTest, BrokenFilesAreToldInOneLine)
{
    for (const std::string name : {"c.png", "c.jpg", "c.tif", "c.dpx", "c.exr"}) {
        paint(name, 90, 70, noise(1));
        const auto size = fs::file_size(name);
        for (const auto length :
             {size - 1, size / 2, size / 8, std::uintmax_t{24}, std::uintmax_t{9}}) {
            fs::resize_file(name, length);
            const Outcome outcome = runProgram({"render", name, "o.png"});
            SCOPED_TRACE(name + " " + std::to_string(length) + "\n" + outcome.err);
            if (outcome.code == 0) continue;  // the last byte may not matter
            EXPECT_EQ(outcome.code, 2);
            EXPECT_EQ(outcome.err, "tesseret: " + name + ": is damaged or truncated\n");
        }
    }
}

/// The plug-in says on its own that it gave up; the command adds what to try, and that helps.
TEST_F(FilesTest, BlocksThatCannotAvoidTheMatteComeWithASizeThatFits)
{
    paint("large.png", 240, 200, noise(5));
    paint("ring.png", 240, 200, [](int x, int y) {
        return std::vector{x >= 90 && x < 150 && y >= 70 && y < 130 ? 255 : 0};
    });
    const CommandRun::Arguments command{"render", "large.png",   "-m",          "ring.png",    "-o",
                                        "o.png",  "pathWidth=2", "edgeBlend=1", "numSamples=5"};
    const auto with = [&](const std::string& size) {
        CommandRun::Arguments arguments = command;
        arguments.push_back("blockSize=" + size);
        return runProgram(arguments).err;
    };
    const std::string failed = with("110");
    EXPECT_THAT(failed, AllOf(HasSubstr("Cannot avoid matte!"),
                              HasSubstr("note: no block of 110 pixels keeps clear of the region")));
    const std::size_t at = failed.find("; blockSize=");
    ASSERT_NE(at, failed.npos) << failed;
    const std::string fitting = failed.substr(at + 12, failed.find(' ', at + 2) - at - 12);
    EXPECT_GE(std::stoi(fitting), 75);
    EXPECT_THAT(with(fitting), IsEmpty());
    EXPECT_THAT(with("40"), IsEmpty());
}

}  // namespace
}  // namespace Tesseret::Command
