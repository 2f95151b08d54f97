#pragma once

#include <string>
#include <vector>

#include "farm/Job.h"

namespace Tesseret::Farm {

/// Words as a shell reads them, each in quotes where it has to be.
std::string shellText(const std::vector<std::string>& words);

/// The script that renders the chunk with the number that it is given, or that its Slurm task has.
/// It needs bash and the program only.
std::string scriptOf(const Job& job);

}  // namespace Tesseret::Farm
