#pragma once

#include "farm/Queue.h"

namespace Tesseret::Farm {

/// Slurm, by its commands: one array of jobs for each submission, a task for each chunk.
class SlurmQueue final : public Queue {
public:
    void require() const override;
    std::string preview(const Job& job, const std::vector<int>& chunks) const override;
    std::string submit(const Job& job, const std::vector<int>& chunks) override;
    std::optional<std::map<int, QueueEntry>> entries(
        const std::vector<Submission>& submissions) const override;
    void cancel(const std::vector<Submission>& submissions) override;
};

/// Adds the tasks in the output of `squeue -h -r -o "%i %t"`, where %i is "123_7".
void addEntries(const std::string& text, std::map<int, QueueEntry>& entries);

}  // namespace Tesseret::Farm
