#pragma once

#include "farm/Queue.h"

namespace Tesseret::Farm {

/// Prints the command line of each chunk, one a line, for a queue that this program does not know.
class PrintQueue final : public Queue {
public:
    void require() const override {}
    std::string preview(const Job& job, const std::vector<int>& chunks) const override;
    /// On standard output; there is no id.
    std::string submit(const Job& job, const std::vector<int>& chunks) override;
    std::optional<std::map<int, QueueEntry>> entries(
        const std::vector<Submission>& submissions) const override;
    void cancel(const std::vector<Submission>& submissions) override;
};

}  // namespace Tesseret::Farm
