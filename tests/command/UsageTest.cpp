#include <algorithm>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/fixtures/CommandRun.h"
#include "tests/fixtures/TemporaryFolder.h"
#include "tests/fixtures/TestPictures.h"

namespace Tesseret::Command {

using namespace Fixtures;

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct WrongUse {
    std::vector<std::string> arguments;  ///< after "render -s a.png -o out.png"
    std::vector<std::string> message;    ///< parts of one line of standard error
};

class UsageTest : public testing::Test {
protected:
    UsageTest()
    {
        fs::current_path(folder_.path());
        paint("a.png", 64, 48, noise(1));
        paint("small.png", 32, 32, noise(2));
        paint("clear.png", 64, 48, [](int x, int y) { return std::vector{x, y, 0, x}; });
        std::ofstream("text.png") << "no picture";
        for (const char* name : {"p.1.png", "p.2.png", "p.5.png"}) paint(name, 64, 48, noise(1));
        paint("seed=1.png", 64, 48, noise(1));
        std::ofstream("broken.json") << "{\n  \"parameters\": {x}\n}\n";
        paint("cut.jpg", 64, 48, noise(1));
        fs::resize_file("cut.jpg", fs::file_size("cut.jpg") / 2);
    }
    ~UsageTest() override { fs::current_path("/"); }

    TemporaryFolder folder_;
};

TEST_F(UsageTest, BadInputIsOneLineAndExitCodeTwo)
{
    const std::vector<WrongUse> uses{
        {{"-s", "none.png"}, {"none.png: no such file"}},
        {{"-s", "text.png"}, {"text.png: is not a PNG"}},
        {{"-s", "cut.jpg"}, {"cut.jpg: is damaged or truncated"}},
        {{"-s", "."}, {"is a folder"}},
        {{"-s", "p.#.png", "-f", "1-6"}, {"p.#.png: missing frames 3-4,6"}},
        {{"-s", "q.#.png"}, {"q.#.png: there is no frame of this sequence on disk"}},
        {{"-o", "o.#.png"}, {"o.#.png is a sequence", "--frames"}},
        {{"-f", "1-2"}, {"out.png: several frames need"}},
        {{"-f", "9-1"}, {"downwards"}},
        {{"-o", "out.gif"}, {"out.gif: unknown extension .gif", ".exr"}},
        {{"-o", "none/out.png"}, {"the folder none does not exist"}},
        {{"--compression", "zip"}, {"PNG takes a level from 0 to 9"}},
        {{"--matte", "small.png"}, {"small.png: the matte is 32 x 32, but the source is 64 x 48"}},
        {{"--matte-inverted"}, {"--matte-inverted requires --matte"}},
        {{"--areas", "first"}, {"--areas requires --matte"}},
        {{"--matte", "a.png", "--areas", "some"}, {"--areas", "expected all, first"}},
        {{"--matte", "a.png", "--matte-window", "none"},
         {"--matte-window", "expected area or full"}},
        {{"--matte", "a.png", "--matte-grow", "1001"}, {"expected a number from 0 to 1000\n"}},
        {{"--matte", "a.png", "--matte-grow", "nan"}, {"--matte-grow"}},
        {{"--matte", "a.png", "--fill-alpha"}, {"--matte excludes --fill-alpha"}},
        {{"--fill-alpha-inverted", "--fill-alpha"}, {"--fill-alpha"}},
        {{"--fill-alpha"}, {"a.png: has no alpha", "--fill-alpha"}},
        {{"--fill-alpha-inverted"}, {"a.png: has no alpha", "--fill-alpha-inverted"}},
        {{"--matte", "a.png", "fillRegion=Source->Alpha"},
         {"--matte and fillRegion=\"Source->Alpha\" contradict each other"}},
        {{"--matte", "a.png", "--matte-inverted", "fillRegion=3"},
         {"--matte-inverted and fillRegion=\"Matte->Alpha\" contradict"}},
        {{"-s", "clear.png", "--fill-alpha", "fillRegion=2"},
         {"--fill-alpha and fillRegion=\"Source->Inverted Alpha\" contradict"}},
        {{"-s", "clear.png", "--fill-alpha", "--plugin", INVERT_PLUGIN}, {"General"}},
        {{"--texture1", "small.png", "sampleCorner1=0.2,0.2"},
         {"small.png: the sample box of 39 x 29", "--sample-box"}},
        {{"--texture1", "none.png"}, {"none.png: no such file"}},
        {{"--matte", "a.png", "--context", "Filter"}, {"Filter has no clip Matte"}},
        {{"--texture1", "small.png", "--sample-box", "0,0,40,30"},
         {"small.png: the sample box of 40 x 30", "--sample-box"}},
        {{"--context", "Paint"}, {"no context \"Paint\"", "Filter, General"}},
        {{"--sample-box", "90,0,99,9"},
         {"--sample-box: the box 90,0,99,9 lies outside a.png", "64 x 48"}},
        {{"--sample-box", "9,0,9,9"}, {"x1 must be left of x2"}},
        {{"--sample-box", "9,0,9"}, {"expected x1,y1,x2,y2"}},
        {{"--sample-box", "0,0,9,9", "sampleCorner1=0,0"}, {"give only one of them"}},
        {{"--window", "-9,-9,0,0"}, {"--window: the box -9,-9,0,0 lies outside a.png", "64 x 48"}},
        {{"--depth", "half"}, {"--depth", "--depth half: expected byte, short or float"}},
        {{"--threads", "0"}, {"--threads"}},
        {{"--render-scale", "0"}, {"--render-scale"}},
        {{"--plugin", "none.ofx"}, {"none.ofx", "no such file"}},
        {{"--plugin", "text.png"}, {"text.png"}},
        {{"--quiet", "--verbose"}, {"--quiet"}},
        {{"--bogus"}, {"--bogus"}},
        {{"blocksize=64"}, {"no parameter \"blocksize\"", "did you mean \"blockSize\""}},
        {{"about=1"}, {"no parameter \"about\""}},
        {{"useTexture1=on"}, {"no parameter \"useTexture1\" in the context Filter"}},
        {{"blockSize=29"}, {"blockSize=29: the range is 30 to 9000000"}},
        {{"blockSize=9000001"}, {"the range is 30 to 9000000"}},
        {{"blockSize=99999999999999"}, {"the range is 30 to 9000000"}},
        {{"blockSize=6.5"}, {"expected an integer"}},
        {{"pathWidth=nan"}, {"the range is 1 to 9000000"}},
        {{"pathWidth="}, {"expected a number"}},
        {{"sampleCorner1=0.5"}, {"expected 2 numbers"}},
        {{"avoidFillRegion=maybe"}, {"expected true or false"}},
        {{"fillRegion=All"}, {"\"Entire Image\" (0), \"Source->Alpha\" (1)"}},
        {{"fillRegion=3"}, {"fillRegion=\"Matte->Alpha\" needs a matte", "--matte"}},
        {{"fillRegion=5"}, {"the choices are"}},
        {{"fillRegion"}, {"nor name=value"}},
        {{"b.png"}, {"\"b.png\": all files are given by options already"}},
        {{"seed=1.png"}, {"\"seed=1.png\" is name=value and the name of a file", "./seed=1.png"}},
        {{"--sample-box", "10%,5%,9%,20%"}, {"x1 must be left of x2"}},
        {{"--sample-box", "1%,2,3,4%%"}, {"expected x1,y1,x2,y2", "10%,10%,50%,90%"}},
        {{"--threads"}, {"--threads: a value is missing: --threads COUNT"}},
        {{"--threads", "1", "--threads", "2"}, {"--threads is given more than once"}},
        {{"--sampel-box", "0,0,1,1"}, {"unknown option --sampel-box; did you mean --sample-box?"}},
        {{"-s", "-", "-m", "-"}, {"standard input can be only one of the pictures"}},
        {{"-o", "gif:-"}, {"standard output: unknown extension .gif"}},
        {{"--parameters", "broken.json"}, {"broken.json: is invalid JSON at line 2, column 18\n"}},
        {{"--parameters", R"({"parameters": {"seed": 0.30000000000000004}})"}, {"seed=0.3"}},
    };
    for (const WrongUse& use : uses) {
        std::vector<std::string> arguments{"render"};
        const auto given = [&](const char* option) {
            return std::ranges::find(use.arguments, option) != use.arguments.end();
        };
        if (!given("-s")) arguments.insert(arguments.end(), {"-s", "a.png"});
        if (!given("-o")) arguments.insert(arguments.end(), {"-o", "out.png"});
        arguments.insert(arguments.end(), use.arguments.begin(), use.arguments.end());
        const Outcome outcome = run(arguments);
        SCOPED_TRACE(use.arguments.back() + "\n" + outcome.err);
        EXPECT_EQ(outcome.code, 2);
        EXPECT_THAT(outcome.out, IsEmpty());
        EXPECT_THAT(outcome.err, StartsWith("tesseret: "));
        EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1);
        for (const std::string& part : use.message) EXPECT_THAT(outcome.err, HasSubstr(part));
        EXPECT_FALSE(fs::exists("out.png"));
    }
    EXPECT_THAT(run({"rendr"}).err, HasSubstr("did you mean \"render\"?\n"));
    EXPECT_THAT(run({"paint"}).err, HasSubstr("the commands are fill, render, wedge, "));
    EXPECT_EQ(run({"paint"}).code, 2);
    EXPECT_THAT(run({"render", "a.png"}).err,
                HasSubstr("--output is missing: tesseret render --source plate.png --output"));
    EXPECT_THAT(run({"inspect"}).err, HasSubstr("missing: tesseret inspect "));
    const Outcome program = runProgram({});
    EXPECT_EQ(program.code, 2);
    EXPECT_THAT(program.err, StartsWith("tesseret: "));
}

TEST_F(UsageTest, HelpAndVersion)
{
    const Outcome help = run({"render", "--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_THAT(help.out,
                AllOf(HasSubstr("Examples:"), HasSubstr("--sample-box"), HasSubstr("upper left")));
    EXPECT_THAT(runProgram({"--version"}).out, ContainsRegex("^tesseret [0-9]+\\.[0-9]+\n$"));
}

TEST_F(UsageTest, DescribesForPeopleAndPrograms)
{
    const Outcome text = run({"describe", "--context", "Filter"});
    EXPECT_EQ(text.code, 0) << text.err;
    EXPECT_THAT(text.out, AllOf(HasSubstr("blockSize"), HasSubstr("range 30 to 9000000"),
                                HasSubstr("Size of the jigsaw pieces"), HasSubstr("Source->Alpha"),
                                HasSubstr("\"Sample Box\""), HasSubstr("default 0.2,0.2")));

    const auto json = nlohmann::json::parse(run({"describe", "--json"}).out);
    EXPECT_EQ(json["identifier"], "com.orvane.brisant.tesseret");
    ASSERT_EQ(json["contexts"].size(), 2u);
    const auto& general = json["contexts"][1];
    EXPECT_EQ(general["context"], "General");
    EXPECT_EQ(general["clips"].size(), 6u);
    EXPECT_EQ(general["pages"].size(), 2u);
    const auto fill = std::ranges::find_if(general["parameters"], [](const auto& parameter) {
        return parameter["name"] == "fillRegion";
    });
    ASSERT_NE(fill, general["parameters"].end());
    EXPECT_EQ((*fill)["options"].size(), 5u);
    EXPECT_EQ((*fill)["default"], 3);

    EXPECT_EQ(run({"describe", "--plugin", "none"}).code, 2);
}

TEST_F(UsageTest, RunsAnyOtherPlugin)
{
    const Outcome text = run({"describe", "--plugin", INVERT_PLUGIN});
    EXPECT_EQ(text.code, 0) << text.err;
    EXPECT_THAT(text.out, AllOf(HasSubstr("Invert"), HasSubstr("amount")));
}

}  // namespace
}  // namespace Tesseret::Command
