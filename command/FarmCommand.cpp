#include "command/FarmCommand.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <set>
#include <thread>

#include "command/FarmStatusText.h"
#include "command/FarmSubmit.h"
#include "command/ProgressBar.h"
#include "farm/Submissions.h"
#include "files/Sequence.h"
#include "render/JobError.h"

namespace Tesseret::Command {

namespace fs = std::filesystem;
using Farm::ChunkState;
using Render::UsageError;

namespace {

constexpr int kExitRunning = 3;
constexpr std::chrono::seconds kWatchInterval{2};

struct FarmOptions {
    fs::path folder;
    int chunk = 0;
    bool watches = false;
};

int exitCode(const Farm::JobStatus& status)
{
    if (status.isActive()) return kExitRunning;
    return status.hasFailed() ? kExitFailed : 0;
}

int showStatus(const FarmOptions& options)
{
    const Farm::Job job = Farm::readJob(options.folder);
    const std::unique_ptr<Farm::Queue> queue = Farm::queueByName(job.queue);
    Farm::JobStatus status = Farm::statusOf(job, *queue);
    ProgressBar bar(stdout, options.watches);
    while (options.watches && status.isActive()) {
        bar.update(double(status.framesDone()) / double(status.frameCount()),
                   farmProgressText(status));
        std::this_thread::sleep_for(kWatchInterval);
        status = Farm::statusOf(job, *queue);
    }
    bar.clear();
    std::fputs(farmStatusText(job, status).c_str(), stdout);
    return exitCode(status);
}

/// Mattes and textures that were mended for the missing frames are taken as they are now. Throws
/// `UsageError` for one that other frames were rendered with.
void acceptMended(Farm::Job& job, const std::vector<int>& missing)
{
    std::vector<int> others;
    std::ranges::set_difference(job.frames, missing, std::back_inserter(others));
    const std::vector<fs::path> shared = job.fixedFiles(others);
    bool hasChanged = false;
    for (const auto& [file, sum] : Farm::sumsOf(job.fixedFiles(missing))) {
        std::string& saved = job.sums[file];
        if (saved == sum) continue;
        if (std::ranges::find(shared, fs::path(file)) != shared.end()) {
            throw UsageError(file +
                             ": has changed, and other frames were rendered with it; "
                             "submit the shot again");
        }
        saved = sum;
        hasChanged = true;
    }
    if (hasChanged) Farm::writeJob(job);
}

int retry(const FarmOptions& options)
{
    Farm::Job job = Farm::readJob(options.folder);
    const std::unique_ptr<Farm::Queue> queue = Farm::queueByName(job.queue);
    queue->require();
    const Farm::JobStatus status = Farm::statusOf(job, *queue);
    std::vector<int> chunks, missing;
    for (const Farm::ChunkStatus& each : status.chunks) {
        if (each.state != ChunkState::Failed) continue;
        chunks.push_back(each.chunk.number);
        missing.insert(missing.end(), each.missing.begin(), each.missing.end());
    }
    std::FILE* const stream = job.queue == "print" ? stderr : stdout;
    if (chunks.empty()) {
        std::fputs("No chunk has failed\n", stream);
        return 0;
    }
    acceptMended(job, missing);
    const std::string id = Farm::submitChunks(job, *queue, chunks);
    if (!id.empty()) std::fprintf(stream, "Slurm job %s: ", id.c_str());
    std::fprintf(stream, "%s again\n", sizeText(missing.size(), chunks.size()).c_str());
    return 0;
}

int cancel(const FarmOptions& options)
{
    const Farm::Job job = Farm::readJob(options.folder);
    Farm::queueByName(job.queue)->cancel(Farm::readSubmissions(job));
    return 0;
}

int verify(const FarmOptions& options)
{
    const Farm::Job job = Farm::readJob(options.folder);
    const std::vector<Farm::Chunk> chunks = job.chunks();
    if (std::size_t(options.chunk) >= chunks.size()) {
        throw UsageError(job.file().string() + ": has no chunk " + std::to_string(options.chunk));
    }
    Farm::checkSums(job.sums, job.fixedFiles(chunks[std::size_t(options.chunk)].frames));
    return 0;
}

using Work = int (*)(const FarmOptions&);

CLI::App* addPart(CLI::App& farm, Action& action, const char* name, const char* description,
                  const std::shared_ptr<FarmOptions>& options, Work work)
{
    CLI::App* const command = farm.add_subcommand(name, description);
    command->add_option("folder", options->folder, "The job's folder")
        ->required()
        ->type_name("DIR");
    command->callback([options, work, &action] { action = [=] { return work(*options); }; });
    return command;
}

}  // namespace

void addFarmCommand(CLI::App& app, Action& action)
{
    const auto options = std::make_shared<FarmOptions>();
    CLI::App* const farm =
        app.add_subcommand("farm", "Renders a shot on many machines, through a queue");
    farm->require_subcommand(1);
    farm->footer(
        "docs/farm.md tells how to divide a shot. Run \"tesseret farm submit --help\" for "
        "the options.");
    addFarmSubmit(*farm, action);
    CLI::App* const status = addPart(
        *farm, action, "status",
        "Tells which frames are done, running and failed; exits with 0 when all are done, 1 after "
        "failures, 3 while any wait or run",
        options, showStatus);
    status->add_flag("--watch", options->watches,
                     "Redraws it until nothing waits or runs any more");
    addPart(*farm, action, "retry", "Submits the chunks with failed or missing frames again",
            options, retry);
    addPart(*farm, action, "cancel", "Takes a job out of the queue", options, cancel);
    CLI::App* const check = addPart(*farm, action, "verify",
                                    "Checks that a chunk's mattes and textures are as they were "
                                    "when it was submitted; every chunk does so itself",
                                    options, verify);
    check->add_option("chunk", options->chunk, "The chunk's number, from 0")
        ->required()
        ->check(CLI::Range(0, 1000000))
        ->type_name("NUMBER");
}

}  // namespace Tesseret::Command
