/// Jobs for queues: chunks, the job's file, what its state is told from, and jobs whose command
/// lines run one after another here. Slurm itself is in render-on-slurm.sh.

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "farm/Script.h"
#include "farm/SlurmQueue.h"
#include "farm/Status.h"
#include "farm/ToolRun.h"
#include "render/JobError.h"
#include "tests/fixtures/MatteFixture.h"

namespace Tesseret::Farm {

namespace {

namespace fs = std::filesystem;
using Fixtures::kLow;
using Fixtures::kMiddle;
using Fixtures::Outcome;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

using Words = std::vector<std::string>;

TEST(FarmChunks, HoldEachFrameOnceInOrder)
{
    const std::vector<Chunk> chunks = chunksOf({5, 1, 3, 2, -4, 9, 7}, 3);
    ASSERT_EQ(chunks.size(), 3u);
    EXPECT_THAT(chunks[0].frames, ElementsAre(-4, 1, 2));
    EXPECT_THAT(chunks[1].frames, ElementsAre(3, 5, 7));
    EXPECT_THAT(chunks[2].frames, ElementsAre(9));
    EXPECT_EQ(chunks[2].number, 2);
    EXPECT_EQ(chunksOf({1, 2}, 20).size(), 1u);
}

TEST(FarmStatus, CombinesReportsFilesAndTheQueue)
{
    const QueueEntry waiting{QueueState::Waiting, "7"}, running{QueueState::Running, "7"};
    const ChunkReport none{}, begun{"running", "7", "", 0, 1, 1.0},
        silent{"running", "7", "", 0, 1, 600.0};
    const ChunkReport done{"done", "7", "", 0, 1, 1.0}, failed{"failed", "7", "", 1, 1, 1.0};
    const ChunkReport older{"failed", "6", "", 1, 1, 1.0},
        requeued{"requeued", "7", "", 137, 1, 1.0};
    const struct {
        const ChunkReport& report;
        bool isMissing;
        const QueueEntry* entry;
        bool isQueueKnown;
        ChunkState state;
    } cases[] = {
        {none, true, &waiting, true, ChunkState::Waiting},
        {none, true, &running, true, ChunkState::Running},
        {none, true, nullptr, true, ChunkState::Failed},  // cancelled
        {none, true, nullptr, false, ChunkState::Waiting},
        {begun, true, &running, true, ChunkState::Running},
        {begun, true, &waiting, true, ChunkState::Waiting},  // its node died
        {begun, true, nullptr, true, ChunkState::Failed},    // out of time
        {begun, true, nullptr, false, ChunkState::Running},
        {silent, true, &running, true, ChunkState::Running},
        {silent, true, nullptr, false, ChunkState::Failed},
        {requeued, true, &waiting, true, ChunkState::Waiting},
        {failed, true, &waiting, true, ChunkState::Waiting},  // submitted again
        {failed, true, &running, true, ChunkState::Failed},   // completing
        {older, true, &running, true, ChunkState::Running},
        {failed, true, nullptr, true, ChunkState::Failed},
        {done, false, nullptr, true, ChunkState::Done},
        {done, false, &running, true, ChunkState::Done},
        {done, true, nullptr, true, ChunkState::Failed},  // removed since
        {done, false, nullptr, false, ChunkState::Done},
    };
    int number = 0;
    for (const auto& each : cases) {
        EXPECT_EQ(stateOf(each.report, each.isMissing, each.entry, each.isQueueKnown), each.state)
            << "case " << number++;
    }
}

TEST(FarmQueue, ReadsTheTasksOfAnArray)
{
    std::map<int, QueueEntry> entries;
    addEntries("12_0 R\n12_7 PD\n12_8 CG\n12_9 F\n13_1001 CF\n14 R\n12_[3-5] PD\n", entries);
    ASSERT_EQ(entries.size(), 4u);
    EXPECT_EQ(entries.at(0).state, QueueState::Running);
    EXPECT_EQ(entries.at(7).state, QueueState::Waiting);
    EXPECT_EQ(entries.at(8).state, QueueState::Running);
    EXPECT_EQ(entries.at(1001).id, "13");
}

TEST(FarmScript, QuotesWhatAShellWouldRead)
{
    const Words words{"a b", "it's", "$HOME", "", "plain.####.png", "x=1", "~", "`ls`", "a\\b"};
    const ToolResult result = runTool({"bash", "-c", "printf '%s\\n' " + shellText(words)});
    std::string expected;
    for (const std::string& word : words) expected += word + "\n";
    EXPECT_EQ(result.out, expected) << result.err;
    EXPECT_EQ(runTool({"no-such-program-here"}).code, 127);
    EXPECT_EQ(runTool({"bash", "-c", "kill -9 $$"}).code, 137);
}

std::string textOf(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class FarmTest : public Fixtures::MatteFixture {
protected:
    static constexpr int kFrames = 6;

    FarmTest()
    {
        for (int frame = 1; frame <= kFrames; ++frame) {
            Fixtures::paint(plate(frame), Fixtures::kWidth, Fixtures::kHeight,
                            Fixtures::noise(frame));
            paintMatte("m" + std::to_string(frame) + ".png", Fixtures::masks({kLow, kMiddle}));
        }
        std::ofstream(in("values.json")) << R"({"parameters": {"blockSize": 30, "overlap": 8}})";
    }

    std::string plate(int frame) const { return in("p" + std::to_string(frame) + ".png"); }
    std::string folder() const { return in("it's a job"); }

    Words shotWords(const Words& more) const
    {
        Words words{"--source", in("p#.png"), "--matte",      in("m#.png"),
                    "--frames", "1-6",        "--parameters", in("values.json")};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    static Outcome tesseret(Words words, const Words& more)
    {
        words.insert(words.end(), more.begin(), more.end());
        return Fixtures::runProgram(words);
    }
    /// Submits the shot for a queue that is not known.
    Outcome submit(const Words& more) const
    {
        Words words = shotWords({"--output", in("o#.png"), "--chunk", "4", "--job-folder", folder(),
                                 "--queue", "print"});
        words.insert(words.end(), more.begin(), more.end());
        return tesseret({"farm", "submit"}, words);
    }
    Outcome farm(const std::string& part) const { return tesseret({"farm", part, folder()}, {}); }
    /// What another queue would do with the command lines, one after another.
    static ToolResult runLines(const std::string& lines)
    {
        std::istringstream stream(lines);
        std::string script = "code=0\n";
        for (std::string line; std::getline(stream, line);) script += line + " || code=$?\n";
        return runTool({"bash", "-c", script + "exit $code"});
    }
    void expectFilesOfOneRun(const Words& more)
    {
        Words words = shotWords({"--output", in("w#.png")});
        words.insert(words.end(), more.begin(), more.end());
        ASSERT_EQ(tesseret({"render"}, words).code, 0);
        for (int frame = 1; frame <= kFrames; ++frame) {
            const std::string name = std::to_string(frame) + ".png";
            EXPECT_EQ(textOf(in("o" + name)), textOf(in("w" + name))) << frame;
        }
    }
};

TEST_F(FarmTest, CommandLinesOfAnyQueueGiveTheFilesOfOneRun)
{
    const Words consistent{"temporalConsistancy=on", "seed=5"};
    const Outcome submitted = submit(consistent);
    ASSERT_EQ(submitted.code, 0) << submitted.err;
    EXPECT_THAT(submitted.err, HasSubstr("6 frames in 2 chunks"));
    EXPECT_EQ(std::ranges::count(submitted.out, '\n'), 2);
    // The parameters are those of the submission, whatever becomes of their file.
    const std::string values = textOf(in("values.json"));
    std::ofstream(in("values.json")) << R"({"parameters": {"blockSize": 20}})";
    const Outcome waiting = farm("status");
    EXPECT_EQ(waiting.code, 3);
    EXPECT_THAT(waiting.out, HasSubstr("6 frames in 2 chunks: 1 done, 5 waiting"));
    EXPECT_EQ(runLines(submitted.out).code, 0);
    const Outcome status = farm("status");
    EXPECT_EQ(status.code, 0) << status.out;
    EXPECT_THAT(status.out, HasSubstr("6 frames in 2 chunks: 6 done\n"));
    std::ofstream(in("values.json")) << values;
    expectFilesOfOneRun(consistent);

    // A file that is gone is a failure, and the only one that is written again.
    const auto before = fs::last_write_time(in("o5.png"));
    fs::remove(in("o6.png"));
    const Outcome missing = farm("status");
    EXPECT_EQ(missing.code, 1);
    EXPECT_THAT(missing.out, HasSubstr("chunk 1, frames 6: the files are gone"));
    const Outcome again = farm("retry");
    EXPECT_EQ(std::ranges::count(again.out, '\n'), 1) << again.out << again.err;
    EXPECT_EQ(runLines(again.out).code, 0);
    EXPECT_EQ(farm("status").code, 0);
    EXPECT_EQ(fs::last_write_time(in("o5.png")), before);
}

TEST_F(FarmTest, ADamagedFrameIsToldAndMended)
{
    const std::string bytes = textOf(plate(3));
    fs::resize_file(plate(3), bytes.size() / 2);
    const Outcome submitted = submit({});
    ASSERT_EQ(submitted.code, 0) << submitted.err;
    const ToolResult run = runLines(submitted.out);
    EXPECT_THAT(run.err, AllOf(HasSubstr("chunk 0000: frame 3: "), HasSubstr("chunk-0000.log")));
    const Outcome status = farm("status");
    EXPECT_EQ(status.code, 1);
    EXPECT_THAT(status.out, AllOf(HasSubstr("5 done, 1 failed"),
                                  HasSubstr("chunk 0, frames 3: frame 3: "), HasSubstr("p3.png")));
    std::ofstream(plate(3), std::ios::binary) << bytes;
    EXPECT_EQ(runLines(farm("retry").out).code, 0);
    EXPECT_EQ(farm("status").code, 0);
    EXPECT_EQ(farm("retry").out, "");
    expectFilesOfOneRun({});
}

TEST_F(FarmTest, AMatteThatChangedIsNotMixedIn)
{
    const Outcome submitted = submit({});
    ASSERT_EQ(submitted.code, 0) << submitted.err;
    paintMatte("m2.png", Fixtures::masks({kMiddle}));
    runLines(submitted.out);
    const Outcome status = farm("status");
    EXPECT_EQ(status.code, 1);
    EXPECT_THAT(status.out,
                AllOf(HasSubstr("2 done, 4 failed"), HasSubstr("m2.png: has changed since")));
    // Nothing was rendered with the older one, so that a retry takes the new one.
    EXPECT_EQ(runLines(farm("retry").out).code, 0);
    expectFilesOfOneRun({});
    // Now something was.
    fs::remove(in("o1.png"));
    paintMatte("m2.png", Fixtures::masks({kLow}));
    EXPECT_NE(runLines(farm("retry").out).code, 0);
    EXPECT_THAT(farm("status").out, HasSubstr("m2.png: has changed since"));
}

TEST_F(FarmTest, RefusesWhatCannotRun)
{
    const auto refused = [&](const Words& more, const std::string& reason) {
        const Outcome outcome = submit(more);
        EXPECT_EQ(outcome.code, 2) << reason;
        EXPECT_THAT(outcome.err, HasSubstr(reason));
        EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1) << outcome.err;
        EXPECT_FALSE(fs::exists(folder())) << reason;
    };
    refused({"seed=a"}, "seed");
    refused({"--after", "job"}, "--after");
    fs::rename(plate(4), in("kept.png"));
    refused({}, "missing frames 4");
    fs::rename(in("kept.png"), plate(4));
    fs::remove(in("m2.png"));
    refused({}, "m#.png: missing frames 2");
    paintMatte("m2.png", Fixtures::masks({kLow}));

    const auto atSlurm = [&](const Words& more) {
        Words words = shotWords({"--chunk", "2", "--job-folder", folder()});
        words.insert(words.end(), more.begin(), more.end());
        return tesseret({"farm", "submit"}, words);
    };
    const Outcome nowhere = atSlurm({"--output", in("none/o#.png"), "--dry-run"});
    EXPECT_EQ(nowhere.code, 2);
    EXPECT_THAT(nowhere.err, HasSubstr("none does not exist"));
    const std::string path = std::getenv("PATH");
    ::setenv("PATH", in("").c_str(), 1);
    const Outcome missing = atSlurm({"--output", in("o#.png")});
    const Outcome dry =
        atSlurm({"--output", in("o#.png"), "--dry-run", "--cpus", "2", "--time", "9"});
    ::setenv("PATH", path.c_str(), 1);
    EXPECT_EQ(missing.code, 2);
    EXPECT_THAT(missing.err, HasSubstr("tesseret: sbatch is missing"));
    EXPECT_EQ(dry.code, 0) << dry.err;
    EXPECT_THAT(dry.out, AllOf(HasSubstr("--array=0-2"), HasSubstr("--requeue"),
                               HasSubstr("--cpus-per-task=2"), HasSubstr("--time=9"),
                               HasSubstr("frames=5-6")));
    EXPECT_FALSE(fs::exists(folder()));
    EXPECT_FALSE(fs::exists(in("o1.png")));

    ASSERT_EQ(submit({}).code, 0);
    EXPECT_THAT(submit({}).err, HasSubstr("holds a job already"));
    EXPECT_EQ(farm("cancel").code, 2);
    fs::rename(folder(), in("moved"));
    const Outcome moved = tesseret({"farm", "status", in("moved")}, {});
    EXPECT_EQ(moved.code, 2);
    EXPECT_THAT(moved.err, HasSubstr("cannot be moved"));
    EXPECT_EQ(farm("status").code, 2);
}

}  // namespace

}  // namespace Tesseret::Farm
