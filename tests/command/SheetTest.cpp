/// Contact sheets: `tesseret fill --variations` and `tesseret wedge`.

#include <filesystem>
#include <fstream>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/fixtures/MatteFixture.h"

namespace Tesseret::Command {

using namespace Fixtures;

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

bool isAt(const LoadedPicture& sheet, int x, int y, const LoadedPicture& picture, const Spot& part)
{
    for (int row = part.y1; row < part.y2; ++row) {
        for (int column = part.x1; column < part.x2; ++column) {
            for (int c = 0; c < 3; ++c) {
                const int shown = sheet.at(x + column - part.x1, y + row - part.y1, c);
                if (shown != picture.at(column, row, c)) return false;
            }
        }
    }
    return true;
}

/// How often a sheet has this part of a picture, pixel by pixel.
int timesShown(const LoadedPicture& sheet, const LoadedPicture& picture, const Spot& part)
{
    int count = 0;
    for (int y = 0; y + part.y2 - part.y1 <= sheet.height; ++y) {
        for (int x = 0; x + part.x2 - part.x1 <= sheet.width; ++x) {
            count += isAt(sheet, x, y, picture, part) ? 1 : 0;
        }
    }
    return count;
}

std::string textOf(const std::string& file)
{
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

class VariationsTest : public MatteFixture {
protected:
    VariationsTest() { paintMatte("m.png", masks({kMiddle})); }

    Outcome fillWith(CommandRun::Arguments more) const
    {
        more.insert(more.begin(),
                    {"fill", "--source", in("a.png"), "--matte", in("m.png"), "--effort", "quick"});
        return run(more);
    }
    LoadedPicture rendered(const std::string& parameters) const
    {
        const Outcome outcome =
            render("a.png", "r.png", {"--matte", in("m.png"), "--parameters", in(parameters)});
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return load(in("r.png"));
    }
};

TEST_F(VariationsTest, AreTheSameOnAnyNumberOfThreads)
{
    for (const char* threads : {"1", "3"}) {
        const Outcome outcome =
            fillWith({"--variations", "5", "--sheet", in(std::string("s") + threads + ".png"),
                      "--threads", threads});
        ASSERT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_THAT(outcome.out, AllOf(HasSubstr("5 variations"), Not(HasSubstr("render"))));
    }
    EXPECT_EQ(load(in("s3.png")), load(in("s1.png")));
    for (const char* number : {"1", "2", "3", "4", "5"}) {
        EXPECT_EQ(textOf(in(std::string("s3.") + number + ".json")),
                  textOf(in(std::string("s1.") + number + ".json")));
    }
    EXPECT_NE(textOf(in("s1.1.json")), textOf(in("s1.2.json")));
    EXPECT_FALSE(std::filesystem::exists(in("s1.6.json")));
}

// What a tile shows, what its parameters render and what --pick renders is one picture.
TEST_F(VariationsTest, ArePickedByTheirNumbers)
{
    const Outcome best = fillWith({"--output", in("best.png")});
    ASSERT_EQ(best.code, 0) << best.err;
    ASSERT_EQ(fillWith({"--variations", "3", "--sheet", in("s.png")}).code, 0);
    const LoadedPicture sheet = load(in("s.png"));
    const Spot part{kMiddle.x1 - 20, kMiddle.y1 - 20, kMiddle.x2 + 20, kMiddle.y2 + 20};
    std::vector<LoadedPicture> all;
    for (const char* number : {"1", "2", "3"}) {
        const Outcome outcome = fillWith(
            {"--output", in("out.png"), "--pick", number, "--save-parameters", in("p.json")});
        ASSERT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_THAT(outcome.out, HasSubstr("tesseret render "));
        all.push_back(load(in("out.png")));
        EXPECT_EQ(rendered(std::string("s.") + number + ".json"), all.back());
        EXPECT_EQ(textOf(in("p.json")), textOf(in(std::string("s.") + number + ".json")));
        EXPECT_EQ(timesShown(sheet, all.back(), part), 1) << number;
    }
    EXPECT_EQ(all[0], load(in("best.png")));
    EXPECT_NE(all[1], all[0]);
    EXPECT_NE(all[2], all[1]);
}

// Of several areas the largest varies; the others are filled in each variation, in the tiles too.
TEST_F(VariationsTest, AreOfTheLargestArea)
{
    const Spot small{70, 70, 78, 78};
    paintMatte("m.png", masks({kMiddle, small}));
    ASSERT_EQ(fillWith({"--variations", "2", "--sheet", in("s.png")}).code, 0);
    const auto steps = [&](const char* name) {
        return nlohmann::json::parse(std::ifstream(in(name)))["steps"];
    };
    ASSERT_EQ(steps("s.1.json").size(), 2U);
    EXPECT_EQ(steps("s.1.json")[0]["areas"], (std::vector{1}));
    EXPECT_NE(steps("s.1.json")[0], steps("s.2.json")[0]);
    EXPECT_EQ(steps("s.1.json")[1], steps("s.2.json")[1]);
    const LoadedPicture sheet = load(in("s.png")), best = rendered("s.1.json");
    EXPECT_EQ(timesShown(sheet, best, {kMiddle.x1 - 20, kMiddle.y1 - 20, small.x2, small.y2}), 1);
    ASSERT_EQ(fillWith({"--variations", "2", "--sheet", in("t.png"), "--areas", "2"}).code, 0);
    EXPECT_EQ(nlohmann::json::parse(std::ifstream(in("t.2.json")))["areas"], (std::vector{2}));
}

TEST_F(VariationsTest, TellWhenFewerDiffer)
{
    paint(in("a.png"), kWidth, kHeight, [](int x, int y) {
        const int grain = (x * 7 + y * 13) % 3;
        return std::vector{120 + grain, 130, 140};
    });
    const Outcome outcome = fillWith({"--variations", "4", "--sheet", in("s.png")});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_THAT(outcome.err, HasSubstr("1 of 4 variations: no more trials differ visibly"));
    EXPECT_TRUE(std::filesystem::exists(in("s.1.json")));
    EXPECT_FALSE(std::filesystem::exists(in("s.2.json")));
    const Outcome picked = fillWith({"--output", in("out.png"), "--pick", "3"});
    EXPECT_EQ(picked.code, 2);
    EXPECT_THAT(picked.err, HasSubstr("--pick 3: there is 1 variation"));
    EXPECT_FALSE(std::filesystem::exists(in("out.png")));
}

TEST_F(VariationsTest, RefuseWhatMakesNoSheet)
{
    const auto expect = [&](const CommandRun::Arguments& more, const char* message) {
        const Outcome outcome = fillWith(more);
        EXPECT_EQ(outcome.code, 2) << message;
        EXPECT_THAT(outcome.err, HasSubstr(message));
    };
    expect({}, "--output");
    expect({"--sheet", in("s.png")}, "--sheet requires --variations");
    expect({"--variations", "3", "--output", in("o.png")}, "--variations requires --sheet");
    expect({"--variations", "1", "--sheet", in("s.png")}, "--variations");
    expect({"--variations", "65", "--sheet", in("s.png")}, "--variations");
    expect({"--pick", "2"}, "--output is missing");
    expect({"--pick", "0", "--output", in("o.png")}, "--pick");
    expect({"--variations", "3", "--pick", "4", "--output", in("o.png")}, "--pick 4");
    expect({"--variations", "3", "--sheet", in("a.png")}, "input files");
    expect({"--variations", "3", "--sheet", in("no/s.png")}, "no");
    expect({"--variations", "3", "--sheet", in("o.png"), "--output", in("o.png")}, "output too");
    Spots specks;
    for (int i = 1; i < 9; ++i) specks.push_back({20 * i, 50, 20 * i + 2, 52});
    paintMatte("m.png", masks(specks));
    expect({"--variations", "3", "--sheet", in("s.png")}, "no sheet: small spots");
    EXPECT_EQ(names().size(), 2U);
}

class WedgeTest : public MatteFixture {
protected:
    WedgeTest() { paintMatte("m.png", masks({kMiddle, kHigh})); }

    Outcome wedge(const std::string& sheet, CommandRun::Arguments more) const
    {
        more.insert(more.begin(), {"wedge", "--source", in("a.png"), "--sheet", in(sheet)});
        return run(more);
    }
    LoadedPicture rendered(CommandRun::Arguments more) const
    {
        EXPECT_EQ(render("a.png", "r.png", std::move(more)).code, 0);
        return load(in("r.png"));
    }
};

// The luminance match needs the whole picture; nothing else does.
TEST_F(WedgeTest, ShowsWhatEachRenderGives)
{
    const CommandRun::Arguments fixed{"--matte",       in("m.png"), "--texture1-crop",
                                      "10,10,180,150", "overlap=8", "pathWidth=2",
                                      "edgeBlend=1"};
    CommandRun::Arguments all = fixed;
    all.insert(all.end(), {"blockSize=30,45", "seed=1-2", "luminanceMatch=on,off"});
    const Outcome outcome = wedge("s.png", all);
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("8 pictures"));
    const LoadedPicture sheet = load(in("s.png"));
    const Spot part{5, 5, 195, 125};
    for (const char* block : {"blockSize=30", "blockSize=45"}) {
        for (const char* seed : {"seed=1", "seed=2"}) {
            for (const char* match : {"luminanceMatch=true", "luminanceMatch=false"}) {
                CommandRun::Arguments one = fixed;
                one.insert(one.end(), {block, seed, match});
                EXPECT_EQ(timesShown(sheet, rendered(one), part), 1) << block << seed << match;
            }
        }
    }
}

// Without a matte the tiles are the whole picture, here at half size; the labels are drawn.
TEST_F(WedgeTest, ScalesWholePicturesAndLabelsThem)
{
    const Outcome outcome =
        wedge("s.png", {"--tile-size", "100", "overlap=8", "seed=3,5-9x2,3", "--quiet"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out + outcome.err, "");
    const LoadedPicture sheet = load(in("s.png"));
    EXPECT_GE(sheet.width, 2 * 100);
    EXPECT_GE(sheet.height, 2 * 80);
    const LoadedPicture full = rendered({"overlap=8", "seed=7"});
    paint(in("half.png"), kWidth / 2, kHeight / 2, [&](int x, int y) {
        std::vector<int> channels;
        for (int c = 0; c < 3; ++c) {
            const int sum = full.at(2 * x, 2 * y, c) + full.at(2 * x + 1, 2 * y, c) +
                            full.at(2 * x, 2 * y + 1, c) + full.at(2 * x + 1, 2 * y + 1, c);
            channels.push_back((sum + 2) / 4);
        }
        return channels;
    });
    EXPECT_EQ(timesShown(sheet, load(in("half.png")), {0, 0, 100, 80}), 1);
    int lit = 0;
    for (int y = 0; y < 44; ++y) {
        for (int x = 0; x < sheet.width; ++x) lit += sheet.at(x, y, 0) > 200 ? 1 : 0;
    }
    EXPECT_GT(lit, 50);  // the title
}

TEST_F(WedgeTest, RefusesWithTheParameterAndItsRange)
{
    const auto expect = [&](const CommandRun::Arguments& more, const std::string& message) {
        const Outcome outcome = wedge("s.png", more);
        EXPECT_EQ(outcome.code, 2) << message;
        EXPECT_THAT(outcome.err, HasSubstr(message));
    };
    expect({"seed=1"}, "a wedge needs a parameter with several values");
    expect({"seed="}, "seed=: has an empty value");
    expect({"seed=1,,2"}, "the range is 0 to 9000000");
    expect({"blockSize=20-40x10"}, "blockSize=20: the range is 30 to 9000000");
    expect({"seed=4-1"}, "seed=4-1: runs downwards");
    expect({"seed=1-4x0"}, "seed=1-4x0: its step must be above 0");
    expect({"sed=1,2"}, "did you mean \"seed\"?");
    expect({"seed=1,2", "seed=3,4"}, "seed is given twice");
    expect({"seed=1,2", "blockSize=30,40", "overlap=5,6", "numSamples=5,6"},
           "seed, blockSize, overlap, numSamples: only three");
    expect({"seed=1-20", "blockSize=30-40"}, "220 pictures; at most 200");
    expect({"luminanceMatch=on,perhaps"}, "expected true or false");
    expect({"seed=1,2", "--matte", in("none.png")}, "none.png");
    EXPECT_THAT(run({"wedge", "--source", in("a.png"), "seed=1,2"}).err,
                HasSubstr("--sheet is missing"));
    EXPECT_FALSE(std::filesystem::exists(in("s.png")));
}

}  // namespace
}  // namespace Tesseret::Command
