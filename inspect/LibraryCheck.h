#pragma once

#include <filesystem>

#include "inspect/Report.h"

namespace Tesseret::Inspect {

/// Checks a shared library without loading it: exported functions, the version of the C library it
/// needs against `newestGlibc` ("2.28"), its stack. Returns false when it cannot be loaded here.
bool checkLibrary(const std::filesystem::path& file, const std::string& newestGlibc,
                  Report& report);

/// Compares "2.9" and "2.28" by their numbers.
bool isNewer(const std::string& version, const std::string& other);

}  // namespace Tesseret::Inspect
