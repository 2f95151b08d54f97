#pragma once

#include <string>

#include "farm/Status.h"

namespace Tesseret::Command {

/// How far a job is, in lines: its frames, rate and time left, and each chunk that failed.
std::string farmStatusText(const Farm::Job& job, const Farm::JobStatus& status);

/// The same in one short line, for a progress bar.
std::string farmProgressText(const Farm::JobStatus& status);

}  // namespace Tesseret::Command
