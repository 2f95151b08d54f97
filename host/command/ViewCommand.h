#pragma once

#include "host/command/RenderCommand.h"

namespace Tesseret::Command {

/// Adds `tesseret view` to the command line; `action` is set when it was chosen.
void addViewCommand(CLI::App& app, Action& action);

}  // namespace Tesseret::Command
