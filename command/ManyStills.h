#pragma once

#include <functional>

#include "command/RenderOptions.h"

namespace Tesseret::Command {

/// Does a command's work for each of its sources and returns the exit code. With one source errors
/// pass through. With several an error is printed, the others go on, and those that failed are
/// listed at the end. Throws `UsageError` as `takeFileWords` does.
int forEachSource(const RenderOptions& options,
                  const std::function<int(const RenderOptions& single)>& work);

}  // namespace Tesseret::Command
