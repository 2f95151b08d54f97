#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "inspect/Report.h"

namespace Tesseret::Inspect {

/// Checks the folders and the Info.plist of a bundle NAME.ofx.bundle, or takes a library that is
/// in none. Returns the library for this system; an empty path when there is none.
std::filesystem::path checkBundle(const std::filesystem::path& bundle, Report& report);

/// Checks that the bundle has an icon for each plug-in, in Contents/Resources, named after it.
void checkIcons(const std::filesystem::path& bundle, const std::vector<std::string>& identifiers,
                Report& report);

}  // namespace Tesseret::Inspect
