#include "farm/SlurmQueue.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <sstream>
#include <string_view>

#include "farm/Script.h"
#include "farm/ToolRun.h"
#include "files/Sequence.h"
#include "render/JobError.h"

namespace Tesseret::Farm {

using Render::UsageError;

namespace {

constexpr int kNoProgram = 127;

std::string arrayText(const Job& job, const std::vector<int>& chunks)
{
    std::string text = Files::framesText(chunks);
    if (job.resources.atMost > 0) text.append("%").append(std::to_string(job.resources.atMost));
    return text;
}

std::vector<std::string> commandOf(const Job& job, const std::vector<int>& chunks)
{
    const Resources& wanted = job.resources;
    std::vector<std::string> words{"sbatch",
                                   "--parsable",
                                   "--job-name=" + job.folder.filename().string(),
                                   "--array=" + arrayText(job, chunks),
                                   "--chdir=" + job.folder.string(),
                                   "--output=" + (job.logFolder() / "chunk-%4a.log").string(),
                                   "--open-mode=append",
                                   "--requeue",
                                   "--nodes=1",
                                   "--ntasks=1",
                                   "--cpus-per-task=" + std::to_string(wanted.cpus)};
    const auto add = [&](const char* option, const std::string& value) {
        if (!value.empty()) words.push_back(option + value);
    };
    add("--partition=", wanted.partition);
    add("--time=", wanted.time);
    add("--mem=", wanted.memory);
    add("--dependency=afterok:", wanted.after);
    if (!wanted.after.empty()) words.emplace_back("--kill-on-invalid-dep=yes");
    words.push_back(job.script().string());
    return words;
}

/// Completing tasks are done with their work, but for the last steps of it.
std::optional<QueueState> stateOf(std::string_view code)
{
    constexpr std::array<std::string_view, 4> kRunning{"R", "CG", "CF", "S"};
    constexpr std::array<std::string_view, 10> kEnded{"CD", "F",   "CA", "TO", "NF",
                                                      "PR", "OOM", "DL", "BF", "RV"};
    if (std::ranges::find(kEnded, code) != kEnded.end()) return std::nullopt;
    const bool runs = std::ranges::find(kRunning, code) != kRunning.end();
    return runs ? QueueState::Running : QueueState::Waiting;
}

}  // namespace

void addEntries(const std::string& text, std::map<int, QueueEntry>& entries)
{
    std::istringstream lines(text);
    for (std::string name, code; lines >> name >> code;) {
        const std::size_t mark = name.find('_');
        const auto state = stateOf(code);
        if (mark == std::string::npos || !state) continue;
        int chunk = 0;
        const char* const end = name.data() + name.size();
        const auto [rest, error] = std::from_chars(name.data() + mark + 1, end, chunk);
        if (error != std::errc() || rest != end) continue;
        entries.insert_or_assign(chunk, QueueEntry{*state, name.substr(0, mark)});
    }
}

void SlurmQueue::require() const
{
    if (runTool({"sbatch", "--version"}).code == kNoProgram) {
        throw UsageError(
            "sbatch is missing: jobs are submitted from a machine with Slurm's commands; --queue "
            "print writes command lines for any other queue");
    }
}

std::string SlurmQueue::preview(const Job& job, const std::vector<int>& chunks) const
{
    return shellText(commandOf(job, chunks)) + "\n";
}

std::string SlurmQueue::submit(const Job& job, const std::vector<int>& chunks)
{
    const ToolResult result = runTool(commandOf(job, chunks));
    if (result.code == kNoProgram) require();
    if (result.code != 0) throw UsageError("sbatch refused the job: " + result.firstError());
    // "123", or "123;cluster" where there are several.
    std::string id = result.out.substr(0, result.out.find_first_of(";\n"));
    const bool isNumber = !id.empty() && std::ranges::all_of(id, [](unsigned char c) {
        return std::isdigit(c) != 0;
    });
    if (!isNumber) throw UsageError("sbatch printed no job id: " + result.out);
    return id;
}

std::optional<std::map<int, QueueEntry>> SlurmQueue::entries(
    const std::vector<Submission>& submissions) const
{
    std::map<int, QueueEntry> entries;
    for (const Submission& submission : submissions) {
        const ToolResult result = runTool(
            {"squeue", "--noheader", "--array", "--jobs=" + submission.id, "--format=%i %t"});
        // Slurm forgets a job some minutes after its end.
        const bool isForgotten = result.err.find("Invalid job id") != std::string::npos;
        if (result.code != 0 && !isForgotten) return std::nullopt;
        addEntries(result.out, entries);
    }
    return entries;
}

void SlurmQueue::cancel(const std::vector<Submission>& submissions)
{
    for (const Submission& submission : submissions) {
        const ToolResult result = runTool({"scancel", "--quiet", submission.id});
        if (result.code == kNoProgram) throw UsageError("scancel is missing");
        if (result.code != 0) throw UsageError("scancel refused: " + result.firstError());
    }
}

}  // namespace Tesseret::Farm
