#pragma once

#include <functional>
#include <string>

#include "command/JsonReport.h"
#include "command/RenderOptions.h"

namespace Tesseret::Command {

/// A command's work for one picture or sequence; the report is null unless one is wanted.
using SourceWork = std::function<int(const RenderOptions& single, PictureReport* report)>;

/// Does the work for each source and returns the exit code. An error is printed; of several sources
/// the others go on, and those that failed are listed at the end. Standard output is kept for the
/// picture or the report where one goes there. Throws `UsageError` as `takeFileWords` does.
int forEachSource(const std::string& command, const RenderOptions& options, const SourceWork& work);

}  // namespace Tesseret::Command
