#pragma once

#include <string>

#include "inspect/Report.h"

namespace Tesseret::Command {

/// An inspection as text for the user: facts, then one line for each finding, then the sum.
std::string inspectionText(const Inspect::Report& report);

/// The same as JSON, for programs: the facts, "findings" and "isWell".
std::string inspectionJson(const Inspect::Report& report);

}  // namespace Tesseret::Command
