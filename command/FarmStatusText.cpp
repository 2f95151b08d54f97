#include "command/FarmStatusText.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "command/ProgressBar.h"
#include "files/Sequence.h"

namespace Tesseret::Command {

using Farm::ChunkState;

namespace {

constexpr int kMostFailures = 20;  ///< that are listed

/// "4.2 frames/s, 1:30 left"; empty where nothing is known yet.
std::string rateText(const Farm::JobStatus& status)
{
    const double rate = status.rate();
    if (rate <= 0.0 || !status.isActive()) return "";
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%.3g frames/s", rate);
    const std::size_t left =
        status.frames(ChunkState::Waiting) + status.frames(ChunkState::Running);
    return text.data() + (", " + durationText(double(left) / rate)) + " left";
}

std::string countsText(const Farm::JobStatus& status)
{
    std::string text = std::to_string(status.framesDone()) + " done";
    const auto add = [&](ChunkState state, const char* word) {
        const std::size_t count = status.frames(state);
        if (count > 0) text += ", " + std::to_string(count) + " " + word;
    };
    add(ChunkState::Running, "running");
    add(ChunkState::Waiting, "waiting");
    add(ChunkState::Failed, "failed");
    return text;
}

std::string failureText(const Farm::Job& job, const Farm::ChunkStatus& failed)
{
    const std::string frames =
        failed.missing.empty() ? "" : ", frames " + Files::framesText(failed.missing);
    return "chunk " + std::to_string(failed.chunk.number) + frames + ": " + failed.error +
           "\n    " + job.logOf(failed.chunk.number).string() + "\n";
}

}  // namespace

std::string sizeText(std::size_t frames, std::size_t chunks)
{
    return std::to_string(frames) + (frames == 1 ? " frame in " : " frames in ") +
           std::to_string(chunks) + (chunks == 1 ? " chunk" : " chunks");
}

std::string farmProgressText(const Farm::JobStatus& status)
{
    const std::string rate = rateText(status);
    return countsText(status) + (rate.empty() ? "" : ", " + rate);
}

std::string farmStatusText(const Farm::Job& job, const Farm::JobStatus& status)
{
    std::string text = sizeText(status.frameCount(), status.chunks.size());
    text.append(": ").append(countsText(status)).append("\n");
    const std::string rate = rateText(status);
    if (!rate.empty()) text += rate + "\n";
    if (!status.isQueueKnown && job.queue == "slurm")
        text += "squeue does not answer: told from the job's files alone\n";
    const auto count =
        std::ranges::count(status.chunks, ChunkState::Failed, &Farm::ChunkStatus::state);
    int listed = 0;
    for (const Farm::ChunkStatus& each : status.chunks) {
        if (each.state == ChunkState::Failed && ++listed <= kMostFailures)
            text += failureText(job, each);
    }
    if (count > kMostFailures)
        text += "and " + std::to_string(count - kMostFailures) + " more chunks that failed\n";
    return text;
}

}  // namespace Tesseret::Command
