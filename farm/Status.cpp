#include "farm/Status.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <fstream>

#include <sys/stat.h>

#include "farm/Submissions.h"
#include "files/Sequence.h"

namespace Tesseret::Farm {

namespace fs = std::filesystem;

namespace {

/// The script's heartbeat comes four times a minute; clocks of machines may differ.
constexpr double kLostAfter = 120.0;

/// Seconds since 1970; 0 where there is no such file.
double modified(const fs::path& file)
{
    struct stat found = {};
    if (::stat(file.c_str(), &found) != 0) return 0.0;
    return double(found.st_mtim.tv_sec) + double(found.st_mtim.tv_nsec) * 1e-9;
}

std::string errorOf(const ChunkReport& report)
{
    if (report.state == "failed" && !report.error.empty()) return report.error;
    if (report.state == "done") return "the files are gone";
    if (report.state.empty()) return "left the queue before it started";
    return "ended without a report: it was cancelled or out of time, or its machine was lost";
}

bool isLive(const ChunkStatus& chunk)
{
    return chunk.state == ChunkState::Waiting || chunk.state == ChunkState::Running;
}

}  // namespace

ChunkReport readReport(const fs::path& file)
{
    ChunkReport report;
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);) {
        const std::size_t mark = line.find('=');
        if (mark == std::string::npos) continue;
        const std::string key = line.substr(0, mark);
        const std::string value = line.substr(mark + 1);
        if (key == "state") report.state = value;
        if (key == "job") report.job = value;
        if (key == "error") report.error = value;
        if (key == "code") report.code = std::atoi(value.c_str());
        if (key == "started") report.started = std::atol(value.c_str());
    }
    report.age = double(std::time(nullptr)) - modified(file);
    return report;
}

ChunkState stateOf(const ChunkReport& report, bool isMissing, const QueueEntry* entry,
                   bool isQueueKnown)
{
    const bool hasEnded = report.state == "done" || report.state == "failed";
    const ChunkState ended =
        report.state == "done" && !isMissing ? ChunkState::Done : ChunkState::Failed;
    if (entry != nullptr) {
        if (entry->state == QueueState::Waiting) return ChunkState::Waiting;
        // The queue learns a little later that the script has ended.
        return hasEnded && report.job == entry->id ? ended : ChunkState::Running;
    }
    if (hasEnded) return ended;
    if (!isMissing && isQueueKnown) return ChunkState::Done;
    if (isQueueKnown) return ChunkState::Failed;
    if (report.state != "running") return ChunkState::Waiting;
    return report.age > kLostAfter ? ChunkState::Failed : ChunkState::Running;
}

JobStatus statusOf(const Job& job, const Queue& queue)
{
    const std::vector<Submission> submissions = readSubmissions(job);
    const double since = submissions.empty() ? 0.0 : double(submissions.back().time);
    // The queue is asked before the files are read: what ends in between has a report then.
    const auto entries = queue.entries(submissions);
    const Files::SequencePattern output(job.output);
    JobStatus status;
    status.isQueueKnown = entries.has_value();
    status.now = std::time(nullptr);
    double begin = 0.0;
    for (const Chunk& chunk : job.chunks()) {
        const ChunkReport report = readReport(job.statusOf(chunk.number));
        ChunkStatus each{chunk, ChunkState::Waiting, {}, ""};
        for (const int frame : chunk.frames) {
            const double time = modified(output.file(frame));
            if (time == 0.0) each.missing.push_back(frame);
            if (time >= since) ++status.written;
        }
        const QueueEntry* entry = nullptr;
        if (entries && entries->contains(chunk.number)) entry = &entries->at(chunk.number);
        each.state = stateOf(report, !each.missing.empty(), entry, status.isQueueKnown);
        if (each.state == ChunkState::Failed) each.error = errorOf(report);
        const auto started = double(report.started);
        if (started >= since && started > 0.0)
            begin = begin == 0.0 ? started : std::min(begin, started);
        status.chunks.push_back(std::move(each));
    }
    if (begin > 0.0) status.seconds = std::max(double(status.now) - begin, 1.0);
    return status;
}

std::size_t JobStatus::frames(ChunkState state) const
{
    std::size_t count = 0;
    for (const ChunkStatus& each : chunks) {
        if (each.state != state) continue;
        count += state == ChunkState::Done ? each.chunk.frames.size() : each.missing.size();
    }
    return count;
}

std::size_t JobStatus::framesDone() const
{
    std::size_t count = frameCount();
    for (const ChunkStatus& each : chunks) count -= each.missing.size();
    return count;
}

std::size_t JobStatus::frameCount() const
{
    std::size_t count = 0;
    for (const ChunkStatus& each : chunks) count += each.chunk.frames.size();
    return count;
}

double JobStatus::rate() const
{
    return seconds > 0.0 ? double(written) / seconds : 0.0;
}

bool JobStatus::isActive() const
{
    return std::ranges::any_of(chunks, isLive);
}

bool JobStatus::hasFailed() const
{
    return std::ranges::any_of(
        chunks, [](const ChunkStatus& each) { return each.state == ChunkState::Failed; });
}

}  // namespace Tesseret::Farm
