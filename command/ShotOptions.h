#pragma once

/// The options for shots that are rendered in parts, or that go on after a failure.

#include "command/RenderOptions.h"

namespace Tesseret::Command {

/// Of all commands that render sequences.
void addResumeOptions(CLI::App& command, RenderOptions& options);
/// How the parts of a shot repeat the same blocks.
void addShotOptions(CLI::App& command, RenderOptions& options);

}  // namespace Tesseret::Command
