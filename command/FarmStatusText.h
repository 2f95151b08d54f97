#pragma once

#include <string>

#include "farm/Status.h"

namespace Tesseret::Command {

/// "1 frame in 1 chunk", "40 frames in 8 chunks".
std::string sizeText(std::size_t frames, std::size_t chunks);

/// How far a job is, in lines: its frames, rate and time left, and each chunk that failed.
std::string farmStatusText(const Farm::Job& job, const Farm::JobStatus& status);

/// The same in one short line, for a progress bar.
std::string farmProgressText(const Farm::JobStatus& status);

}  // namespace Tesseret::Command
