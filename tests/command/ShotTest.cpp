/// Shots that are rendered in parts, gone on with, or damaged in places.

#include <cstdlib>
#include <fstream>
#include <iterator>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fixtures/MatteFixture.h"

namespace Tesseret::Command {

using namespace Fixtures;

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

using Words = CommandRun::Arguments;

Words operator+(Words words, const Words& more)
{
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

std::string bytesOf(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void write(const fs::path& file, const std::string& bytes)
{
    std::ofstream(file, std::ios::binary) << bytes;
}

int countLines(const std::string& text)
{
    return static_cast<int>(std::ranges::count(text, '\n'));
}

class ShotTest : public MatteFixture {
protected:
    static constexpr int kFrames = 8;

    ShotTest()
    {
        for (int frame = 1; frame <= kFrames; ++frame) {
            paint(in(numbered("p%d.png", frame)), kWidth, kHeight, noise(frame));
        }
        paint(in("t.png"), 90, 70, noise(77));
        paintMatte("m.png", masks({kLow, kMiddle}));
        for (int frame = 1; frame <= kFrames; ++frame) {
            const int x = 4 * frame;
            paintMatte(numbered("move%d.png", frame), masks({{30 + x, 70, 50 + x, 90}, kLow}));
            // Other areas from frame 4 on, none in frame 5.
            const Spots spots = frame < 4 ? Spots{kLow} : Spots{kMiddle};
            paintMatte(numbered("cut%d.png", frame), masks(frame == 5 ? Spots{} : spots));
        }
    }

    /// Renders frames of the shot; `shown` names the files.
    Outcome part(const std::string& shown, const std::string& frames, const Words& more) const
    {
        return render("p#.png", shown + "#.png",
                      Words{"--frames", frames, "blockSize=30", "overlap=8", "pathWidth=2",
                            "edgeBlend=1", "temporalConsistancy=on"} +
                          more);
    }
    std::string shot(const std::string& shown, int frame) const
    {
        return in(shown + std::to_string(frame) + ".png");
    }
    std::string saved(const std::string& name = "m.fill") const { return in(name); }
    const Words matte_{"--matte", in("m.png")};
};

// However a shot is divided, its files are those of one run, byte for byte.
TEST_F(ShotTest, PartsOfAShotAreOneRun)
{
    const std::string steps =
        R"({"steps": [{"areas": [1], "parameters": {"seed": 3, "luminanceMatch": true}},)"
        R"( {"areas": [2], "parameters": {"seed": 4}}]})";
    const std::vector<Words> kinds{
        matte_,
        {"--matte", in("move#.png"), "--follow", "--matte-grow", "3"},
        {"--matte", in("cut#.png"), "luminanceMatch=on"},
        {"--texture1", in("t.png"), "--depth", "float"},
        {"--matte", in("m.png"), "--parameters", steps, "--depth", "short"},
    };
    for (const Words& kind : kinds) {
        SCOPED_TRACE(testing::PrintToString(kind));
        const Outcome whole = part("w", "1-8", kind + Words{"--threads", "2"});
        ASSERT_EQ(whole.code, 0) << whole.err;
        const Words load{"--load-fill", saved()};
        const std::vector<std::pair<std::string, Words>> parts{
            {"1-2", {"--save-fill", saved(), "--threads", "1"}},
            {"3", load},
            {"4-5", {"--first-frame", "1"}},
            {"6-7", load},
            {"8", {"--first-frame", "1", "--threads", "2"}},
        };
        for (const auto& [frames, how] : parts) {
            const Outcome outcome = part("o", frames, kind + how);
            ASSERT_EQ(outcome.code, 0) << frames << outcome.err;
            EXPECT_THAT(outcome.err, Not(HasSubstr("jumps"))) << frames;
        }
        for (int frame = 1; frame <= kFrames; ++frame) {
            EXPECT_EQ(bytesOf(shot("o", frame)), bytesOf(shot("w", frame))) << frame;
            fs::remove(shot("o", frame));
        }
        // A part that begins with the first frame chooses its blocks anew, as one run does.
        ASSERT_EQ(part("o", "1-2", kind + load).code, 0);
        for (const int frame : {1, 2}) {
            EXPECT_EQ(bytesOf(shot("o", frame)), bytesOf(shot("w", frame))) << frame;
        }
    }
}

TEST_F(ShotTest, OnlyTheFramesAreWrittenAndAJumpIsTold)
{
    const Outcome first = part("o", "5-6", matte_ + Words{"--first-frame", "2"});
    EXPECT_EQ(first.code, 0) << first.err;
    EXPECT_TRUE(fs::exists(shot("o", 5)));
    EXPECT_FALSE(fs::exists(shot("o", 2)));
    const Outcome jumping = part("j", "5-6", matte_);
    EXPECT_EQ(jumping.code, 0);
    EXPECT_THAT(jumping.err, AllOf(HasSubstr("p4.png: lies before frame 5"),
                                   HasSubstr("--first-frame"), HasSubstr("--load-fill")));
    EXPECT_NE(bytesOf(shot("j", 6)), bytesOf(shot("o", 6)));
    EXPECT_THAT(part("j", "1-2", matte_).err, Not(HasSubstr("jumps")));
    EXPECT_THAT(part("j", "5-6", matte_ + Words{"temporalConsistancy=off"}).err,
                Not(HasSubstr("jumps")));

    const Outcome later = part("o", "3", matte_ + Words{"--first-frame", "4"});
    EXPECT_EQ(later.code, 2);
    EXPECT_THAT(later.err, HasSubstr("--first-frame 4: no frame of --frames may lie before it"));
    const Outcome missing = part("o", "3", matte_ + Words{"--first-frame", "-1"});
    EXPECT_EQ(missing.code, 2);
    EXPECT_THAT(missing.err, HasSubstr("missing frames -1"));
    EXPECT_EQ(
        part("o", "1", matte_ + Words{"--save-fill", saved(), "temporalConsistancy=off"}).code, 2);
}

// What a fill is loaded for has to be what it was saved for.
TEST_F(ShotTest, AFillOfAnotherJobIsRefused)
{
    const Words used = matte_ + Words{"--texture1", in("t.png")};
    ASSERT_EQ(part("o", "2", used + Words{"--save-fill", saved()}).code, 0);
    const auto load = [&](const std::string& frames, const Words& more) {
        const Outcome outcome = part("o", frames, more + Words{"--load-fill", saved()});
        EXPECT_EQ(countLines(outcome.err), outcome.code == 0 ? 0 : 1) << outcome.err;
        EXPECT_EQ(outcome.code == 0, outcome.err.empty());
        return outcome.code == 2 ? outcome.err : std::to_string(outcome.code);
    };
    EXPECT_EQ(load("4", used), "0");
    EXPECT_THAT(load("4", used + Words{"seed=9"}),
                HasSubstr("was saved with seed 1, and this render has 9; save it again"));
    EXPECT_THAT(load("4", used + Words{"--matte-grow", "2"}), HasSubstr("--matte-grow 0.0"));
    EXPECT_THAT(load("4", used + Words{"--depth", "float"}), HasSubstr("--depth byte"));
    EXPECT_THAT(load("4", matte_), HasSubstr("checksum"));
    EXPECT_THAT(load("1-4", used), HasSubstr("was recorded in frame 2, and --frames has some"));
    paint(in("t.png"), 90, 70, noise(78));
    EXPECT_THAT(load("4", used), HasSubstr("--texture1 of checksum"));
    paint(in("t.png"), 90, 70, noise(77));
    EXPECT_EQ(load("4", used), "0");
    for (int frame = 1; frame <= kFrames; ++frame) {
        paint(in(numbered("p%d.png", frame)), kWidth + 2, kHeight, noise(frame));
    }
    paint(in("m.png"), kWidth + 2, kHeight, masks({kLow, kMiddle}));
    EXPECT_THAT(load("4", used), HasSubstr("a source of 200 x 160, and this render has 202 x 160"));
}

TEST_F(ShotTest, ADamagedFillIsRefused)
{
    ASSERT_EQ(part("o", "1", matte_ + Words{"--save-fill", saved()}).code, 0);
    const std::string whole = bytesOf(saved());
    const auto error = [&](const std::string& bytes) {
        write(in("bad.fill"), bytes);
        const Outcome outcome = part("n", "3", matte_ + Words{"--load-fill", in("bad.fill")});
        EXPECT_EQ(outcome.code, 2);
        EXPECT_EQ(countLines(outcome.err), 1) << outcome.err;
        return outcome.err;
    };
    for (const std::size_t length :
         {std::size_t{9}, std::size_t{30}, whole.size() / 2, whole.size() - 1}) {
        EXPECT_THAT(error(whole.substr(0, length)), HasSubstr("truncated or damaged")) << length;
    }
    EXPECT_THAT(error(whole + "x"), HasSubstr("truncated or damaged"));
    std::string changed = whole;
    changed[whole.size() - 100] ^= 1;
    EXPECT_THAT(error(changed), HasSubstr("truncated or damaged"));
    changed = whole;
    changed[8] = 7;
    EXPECT_THAT(error(changed), HasSubstr("is a fill of version 7"));
    EXPECT_THAT(error(""), HasSubstr("is no fill that --save-fill wrote"));
    EXPECT_THAT(error(bytesOf(in("m.png"))), HasSubstr("is no fill that --save-fill wrote"));
    EXPECT_FALSE(fs::exists(shot("n", 3)));
    const Outcome absent = part("n", "3", matte_ + Words{"--load-fill", in("absent.fill")});
    EXPECT_EQ(absent.code, 2);
    EXPECT_THAT(absent.err, HasSubstr("absent.fill: cannot be read: No such file"));
}

// What is there stays; the frames between show the same blocks as in one run.
TEST_F(ShotTest, WholeFilesAreLeftAlone)
{
    ASSERT_EQ(part("w", "1-6", matte_).code, 0);
    ASSERT_EQ(part("o", "1-6", matte_).code, 0);
    const std::string whole = bytesOf(shot("o", 2));
    fs::remove(shot("o", 3));
    write(shot("o", 4), bytesOf(shot("o", 4)).substr(0, 5000));
    paint(shot("o", 5), 20, 30, noise(1));  // of another size
    fs::copy_file(in("p1.png"), shot("o", 6), fs::copy_options::overwrite_existing);
    const Outcome outcome = part("o", "1-6", matte_ + Words{"--skip-existing"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("3 of 6 frames have whole files already\n"),
                                   HasSubstr("o3.png"), Not(HasSubstr("o2.png"))));
    for (const int frame : {1, 2, 3, 4, 5}) {
        EXPECT_EQ(bytesOf(shot("o", frame)), bytesOf(shot("w", frame))) << frame;
    }
    EXPECT_EQ(bytesOf(shot("o", 6)), bytesOf(in("p1.png"))) << "whole, whatever it shows";
    EXPECT_EQ(bytesOf(shot("o", 2)), whole);

    const Outcome again =
        part("o", "1-6", matte_ + Words{"--skip-existing", "--save-fill", saved()});
    EXPECT_EQ(again.code, 0) << again.err;
    EXPECT_TRUE(fs::exists(saved())) << "also when nothing is left to write";
}

TEST_F(ShotTest, KeepGoingReportsEachFrameAndRendersTheRest)
{
    ASSERT_EQ(part("w", "1-6", matte_).code, 0);
    write(in("p3.png"), bytesOf(in("p3.png")).substr(0, 900));
    fs::remove(in("p5.png"));
    const Outcome without = part("o", "1-6", matte_);
    EXPECT_EQ(without.code, 2);
    EXPECT_THAT(without.err, HasSubstr("missing frames 5"));
    const Outcome outcome = part("o", "1-6", matte_ + Words{"--keep-going"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.err, AllOf(HasSubstr("tesseret: 2 of 6 frames failed: 3,5\nframe 3: "),
                                   HasSubstr("\nframe 5: ")));
    for (const int frame : {1, 2, 4, 6}) {
        EXPECT_EQ(bytesOf(shot("o", frame)), bytesOf(shot("w", frame))) << frame;
    }
    EXPECT_FALSE(fs::exists(shot("o", 3)));

    // A first frame that the others have to repeat ends the job.
    const Outcome first = part("n", "4-6", matte_ + Words{"--keep-going", "--first-frame", "3"});
    EXPECT_EQ(first.code, 2);
    EXPECT_THAT(first.err, HasSubstr("p3.png"));
    EXPECT_FALSE(fs::exists(shot("n", 4)));

    // A frame whose file cannot be written is one that failed, too.
    fs::create_directory(shot("b", 2));
    const Outcome blocked = part("b", "1-2", matte_ + Words{"--keep-going"});
    EXPECT_EQ(blocked.code, 1);
    EXPECT_THAT(blocked.err, HasSubstr("1 of 2 frames failed: 2"));
}

TEST_F(ShotTest, NothingIsWrittenOutsideTheOutput)
{
    const fs::path home = folder_ / "home";
    fs::create_directory(home);
    const char* const before = std::getenv("HOME");
    const std::string kept = before != nullptr ? before : "";
    ::setenv("HOME", home.c_str(), 1);
    ::unsetenv("DISPLAY");
    ::unsetenv("WAYLAND_DISPLAY");
    const Outcome outcome =
        runProgram(Words{"render", "--source", in("p#.png"), "--output", in("o#.exr"), "--frames",
                         "1-2", "--save-fill", saved(), "temporalConsistancy=on"} +
                   matte_);
    ::setenv("HOME", kept.c_str(), 1);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_TRUE(fs::is_empty(home));
    for (const std::string& name : names()) EXPECT_THAT(name, Not(HasSubstr("part")));
}

}  // namespace
}  // namespace Tesseret::Command
