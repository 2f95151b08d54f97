#pragma once

#include <vector>

#include "farm/Queue.h"

namespace Tesseret::Farm {

/// What was handed to the queue so far, oldest first: `submissions.json` in the job's folder. None
/// where there is no such file. Throws `UsageError` for a damaged one.
std::vector<Submission> readSubmissions(const Job& job);

/// Hands chunks over, and notes it in that file. Returns the queue's id.
std::string submitChunks(const Job& job, Queue& queue, const std::vector<int>& chunks);

}  // namespace Tesseret::Farm
