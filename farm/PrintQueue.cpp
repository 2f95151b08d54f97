#include "farm/PrintQueue.h"

#include <cstdio>

#include "farm/Script.h"
#include "render/JobError.h"

namespace Tesseret::Farm {

std::string PrintQueue::preview(const Job& job, const std::vector<int>& chunks) const
{
    std::string text;
    for (const int chunk : chunks)
        text += shellText({job.script().string(), std::to_string(chunk)}) + "\n";
    return text;
}

std::string PrintQueue::submit(const Job& job, const std::vector<int>& chunks)
{
    std::fputs(preview(job, chunks).c_str(), stdout);
    std::fflush(stdout);
    return "";
}

std::optional<std::map<int, QueueEntry>> PrintQueue::entries(
    const std::vector<Submission>& /*submissions*/) const
{
    return std::nullopt;
}

void PrintQueue::cancel(const std::vector<Submission>& /*submissions*/)
{
    throw Render::UsageError(
        "the command lines of this job were printed for another queue, which alone can take them "
        "back");
}

}  // namespace Tesseret::Farm
