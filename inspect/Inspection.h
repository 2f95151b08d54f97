#pragma once

#include <chrono>
#include <filesystem>
#include <string>

#include "inspect/Report.h"

namespace Tesseret::Inspect {

struct Options {
    std::filesystem::path bundle;     ///< NAME.ofx.bundle, or a library
    std::string newestGlibc;          ///< a newer version of the C library is a finding
    std::chrono::milliseconds limit;  ///< for all that is done with the loaded library
};

/// Inspects a bundle of any maker as a host that loads it. Never throws for what is wrong with the
/// bundle. Facts: "bundle", "library", "systems", "machine", "needs", "exports", "glibc",
/// "plugins", "icons"; those that could not be found out are left out.
Report inspect(const Options& options);

}  // namespace Tesseret::Inspect
