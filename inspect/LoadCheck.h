#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "inspect/Report.h"

namespace Tesseret::Inspect {

/// Loads a library as a host does, in a child process that is ended after `limit`: the libraries
/// that it needs, its records, every plug-in described in every context, an instance of each,
/// unloaded and loaded again. A crash, an exit or a hang is a finding that names the step. Returns
/// the identifiers of the plug-ins.
std::vector<std::string> checkLoading(const std::filesystem::path& file,
                                      std::chrono::milliseconds limit, Report& report);

}  // namespace Tesseret::Inspect
