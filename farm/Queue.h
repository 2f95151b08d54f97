#pragma once

/// What a job needs of a queue. A queue is asked for arrays of chunks, and what became of them.

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "farm/Job.h"

namespace Tesseret::Farm {

enum class QueueState { Waiting, Running };

/// One submission: the id that the queue gave it, and its chunks.
struct Submission {
    std::string id;  ///< empty where the queue does not tell
    std::vector<int> chunks;
    long time = 0;  ///< in seconds since 1970
};

struct QueueEntry {
    QueueState state;
    std::string id;  ///< of the submission
};

class Queue {
public:
    virtual ~Queue() = default;

    /// Throws `UsageError` where nothing can be submitted from here.
    virtual void require() const = 0;
    /// What `submit` would run or print.
    virtual std::string preview(const Job& job, const std::vector<int>& chunks) const = 0;
    /// Hands the chunks over and returns the id. Throws `UsageError` with the queue's own reason.
    virtual std::string submit(const Job& job, const std::vector<int>& chunks) = 0;
    /// The chunks that are still in the queue; nullopt where it cannot be asked.
    virtual std::optional<std::map<int, QueueEntry>> entries(
        const std::vector<Submission>& submissions) const = 0;
    /// Takes everything out of the queue. Throws `UsageError` with the queue's own reason.
    virtual void cancel(const std::vector<Submission>& submissions) = 0;
};

/// "slurm" or "print".
std::unique_ptr<Queue> queueByName(const std::string& name);

}  // namespace Tesseret::Farm
