/// `tesseret fill` on drawn pictures: what it chooses, prints and writes.

#include <cmath>
#include <fstream>

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

constexpr int kSize = 240;

/// Round stones of about 12 pixels, none like another.
Painter stones(int base)
{
    return [base](int x, int y) {
        const double wave = std::sin(x * 0.51 + 2.1 * std::sin(y * 0.17)) +
                            std::sin(y * 0.47 + 1.7 * std::sin(x * 0.13));
        const int grain = (x * 7919 + y * 104729 + x * y * 31) % 17;
        const int value = base + static_cast<int>(24 * wave) + grain;
        return std::vector{value, value - 10, value - 30};
    };
}

Painter withThing(const Painter& ground, const Spots& things)
{
    return [=](int x, int y) {
        return holds(things, x, y) ? std::vector{255, 0, 255} : ground(x, y);
    };
}

int magentaPixels(const LoadedPicture& picture)
{
    int count = 0;
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const bool isMagenta = picture.at(x, y, 0) > picture.at(x, y, 1) + 60 &&
                                   picture.at(x, y, 2) > picture.at(x, y, 1) + 60;
            count += isMagenta ? 1 : 0;
        }
    }
    return count;
}

class FillTest : public RenderFixture {
protected:
    void paintCase(const Painter& ground, const Spots& things)
    {
        paint(in("a.png"), kSize, kSize, withThing(ground, things));
        paint(in("m.png"), kSize, kSize, masks(things));
    }

    Outcome fill(CommandRun::Arguments more, const std::string& output = "out.png") const
    {
        const CommandRun::Arguments all{"fill",      "--source", in("a.png"), "--matte",
                                        in("m.png"), "--output", in(output)};
        more.insert(more.begin(), all.begin(), all.end());
        return run(more);
    }

    /// Runs the `tesseret render` command that a fill printed, with another output.
    void repeat(const Outcome& filled, const std::string& output) const
    {
        const std::size_t at = filled.out.rfind("tesseret render ");
        ASSERT_NE(at, std::string::npos) << filled.out;
        CommandRun::Arguments words;
        std::string word;
        bool isQuoted = false;
        for (const char c : filled.out.substr(at)) {
            if (c == '\'') {
                isQuoted = !isQuoted;
            } else if ((c == ' ' || c == '\n') && !isQuoted) {
                words.push_back(std::exchange(word, ""));
            } else {
                word += c;
            }
        }
        words.erase(words.begin());
        const auto name = std::ranges::find(words, in("out.png"));
        ASSERT_NE(name, words.end());
        *name = in(output);
        const Outcome again = run(words);
        EXPECT_EQ(again.code, 0) << again.err;
    }
};

const Spots kThing{{90, 100, 130, 150}};

// Texture fills as if nothing had been there: the score is near 1, and the thing is gone although
// the matte is as tight as it.
TEST_F(FillTest, RemovesAThingAndPrintsTheCommandThatDoesTheSame)
{
    paintCase(stones(120), kThing);
    const Outcome filled = fill({"--effort", "quick", "--save-parameters", in("p.json")});
    ASSERT_EQ(filled.code, 0) << filled.err;
    EXPECT_THAT(filled.out, AllOf(HasSubstr("area 1: "), HasSubstr("  score ")));
    EXPECT_THAT(filled.err, Not(HasSubstr("is visible")));
    EXPECT_EQ(magentaPixels(load(in("out.png"))), 0);
    repeat(filled, "again.png");
    EXPECT_EQ(load(in("again.png")), load(in("out.png")));
    const Outcome saved =
        render("a.png", "saved.png", {"--matte", in("m.png"), "--parameters", in("p.json")});
    EXPECT_EQ(saved.code, 0) << saved.err;
    EXPECT_EQ(load(in("saved.png")), load(in("out.png")));
}

TEST_F(FillTest, ChoosesTheSameOnAnyNumberOfThreads)
{
    paintCase(stones(120), kThing);
    for (const char* threads : {"1", "2", "7"}) {
        const Outcome filled =
            fill({"--effort", "quick", "--threads", threads}, std::string(threads) + ".png");
        ASSERT_EQ(filled.code, 0) << filled.err;
    }
    EXPECT_EQ(load(in("2.png")), load(in("1.png")));
    EXPECT_EQ(load(in("7.png")), load(in("1.png")));
}

// Several areas become a list of steps; no area is filled with what another is to lose.
TEST_F(FillTest, FillsSeveralAreasInSteps)
{
    paintCase(stones(120), {{40, 40, 70, 80}, {76, 44, 110, 70}, {170, 160, 200, 200}});
    const Outcome filled = fill({"--effort", "quick", "--save-parameters", in("p.json")});
    ASSERT_EQ(filled.code, 0) << filled.err;
    EXPECT_EQ(magentaPixels(load(in("out.png"))), 0);
    const auto json = nlohmann::json::parse(std::ifstream(in("p.json")));
    EXPECT_EQ(json["steps"].size(), 3U);
    repeat(filled, "again.png");
    EXPECT_EQ(load(in("again.png")), load(in("out.png")));
}

TEST_F(FillTest, RemovesEverySpeckWithoutTrials)
{
    Spots specks;
    for (int i = 0; i < 60; ++i) {
        const int x = 3 + (i * 73) % (kSize - 6), y = 3 + (i * 151) % (kSize - 6);
        specks.push_back({x, y, x + 1, y + 1});
    }
    paintCase(stones(120), specks);
    const Outcome filled = fill({});
    ASSERT_EQ(filled.code, 0) << filled.err;
    EXPECT_THAT(filled.out, Not(HasSubstr("score")));
    EXPECT_EQ(magentaPixels(load(in("out.png"))), 0);
}

TEST_F(FillTest, KeepsWhatTheUserFixed)
{
    paintCase(stones(120), kThing);
    const Outcome filled = fill({"--effort", "quick", "--sample-box", "150,20,230,120",
                                 "--matte-grow", "5", "blockSize=33", "seed=4"});
    ASSERT_EQ(filled.code, 0) << filled.err;
    EXPECT_THAT(filled.out, AllOf(HasSubstr("as given"), HasSubstr("blockSize=33"),
                                  HasSubstr("--matte-grow 5 "), HasSubstr("seed=4")));
    EXPECT_THAT(filled.out, Not(HasSubstr("-crop")));
    repeat(filled, "again.png");
    EXPECT_EQ(load(in("again.png")), load(in("out.png")));
}

// Two grounds, and a thing across their border: each side keeps its own.
TEST_F(FillTest, KeepsTwoGroundsApart)
{
    constexpr int kHorizon = 120;
    const Painter land = stones(90);
    paintCase(
        [=](int x, int y) {
            if (y >= kHorizon) return land(x, y);
            const int haze = 200 + (x * 31 + y * 17) % 5;
            return std::vector{haze - 20, haze, haze + 20};
        },
        {{100, 90, 140, 150}});
    const Outcome filled = fill({});
    ASSERT_EQ(filled.code, 0) << filled.err;
    const LoadedPicture picture = load(in("out.png"));
    EXPECT_EQ(magentaPixels(picture), 0);
    int wrong = 0;
    for (int x = 100; x < 140; ++x) {
        for (const int y : {92, 98, 104}) wrong += picture.at(x, y, 1) < 180 ? 1 : 0;
        for (const int y : {136, 142, 148}) wrong += picture.at(x, y, 1) > 180 ? 1 : 0;
    }
    EXPECT_LE(wrong, 6);
}

// A structure that no texture continues is told, and the exit code stays 0.
TEST_F(FillTest, TellsAPoorScore)
{
    const Painter ground = stones(120);
    paintCase(
        [=](int x, int y) {
            const double distance = std::hypot(x - 110, y - 125);
            if (std::abs(distance - 42) < 5) return std::vector{20, 20, 200};
            if (distance < 42) return std::vector{230, 200, 40 + (x * y) % 5};
            return ground(x, y);
        },
        {{96, 84, 160, 150}});
    const Outcome filled = fill({"--effort", "quick"});
    EXPECT_EQ(filled.code, 0) << filled.err;
    EXPECT_THAT(filled.err, HasSubstr("even the best fill is visible"));
}

TEST_F(FillTest, RefusesWhatItCannotDo)
{
    paintCase(stones(120), kThing);
    EXPECT_THAT(run({"fill", "--source", in("a.png"), "--output", in("o.png")}).err,
                HasSubstr("--matte is missing: tesseret fill --source"));
    const Outcome still = fill({"--choose-at", "3"});
    EXPECT_EQ(still.code, 2);
    EXPECT_THAT(still.err, HasSubstr("--choose-at"));
    EXPECT_THAT(fill({"--effort", "more"}).err, HasSubstr("--effort"));
}

/// A sequence in which the ground, the thing on it and its matte move by whole pixels.
class FollowTest : public RenderFixture {
protected:
    FollowTest()
    {
        for (int frame = 1; frame <= 4; ++frame) {
            const int shift = 14 * (frame - 1);
            const Spot thing{110 - shift, 60 + shift / 2, 140 - shift, 90 + shift / 2};
            const Painter ground = stones(120);
            paint(in(numbered("p%d.png", frame)), kWidth, kHeight, [=](int x, int y) {
                return thing.holds(x, y) ? std::vector{255, 0, 255}
                                         : ground(x + shift + 300, y - shift / 2 + 300);
            });
            paint(in(numbered("m%d.png", frame)), kWidth, kHeight, masks({thing}));
        }
    }

    Outcome renderFrames(CommandRun::Arguments more) const
    {
        const CommandRun::Arguments fixed{"--frames",
                                          "1-4",
                                          "--matte",
                                          in("m#.png"),
                                          "--matte-grow",
                                          "6",
                                          "blockSize=40",
                                          "overlap=20",
                                          "edgeBlend=1",
                                          "pathWidth=2",
                                          "temporalConsistancy=on"};
        more.insert(more.end(), fixed.begin(), fixed.end());
        return render("p#.png", "o#.png", more);
    }
};

TEST_F(FollowTest, RecordedBlocksMoveWithTheMatte)
{
    const Outcome still = renderFrames({});
    EXPECT_THAT(still.err,
                AllOf(HasSubstr("frame 2 masks more than the region recorded in frame 1"),
                      HasSubstr("--follow")));
    EXPECT_GT(magentaPixels(load(in("o2.png"))), 0);
    const Outcome moving = renderFrames({"--follow", "--texture1-crop", "60,20,190,135"});
    EXPECT_EQ(moving.code, 0);
    EXPECT_THAT(moving.err, Not(HasSubstr("warning")));
    const LoadedPicture first = load(in("o1.png"));
    for (int frame = 2; frame <= 4; ++frame) {
        const LoadedPicture later = load(in(numbered("o%d.png", frame)));
        EXPECT_EQ(magentaPixels(later), 0) << frame;
        const int shift = 14 * (frame - 1);
        int different = 0;
        for (int y = 60; y < 90; ++y) {
            for (int x = 110; x < 140; ++x) {
                different += first.at(x, y, 0) != later.at(x - shift, y + shift / 2, 0) ? 1 : 0;
            }
        }
        EXPECT_EQ(different, 0) << frame;
    }
}

}  // namespace
}  // namespace Tesseret::Command
