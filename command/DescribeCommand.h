#pragma once

#include <CLI/CLI.hpp>

#include "command/Action.h"

namespace Tesseret::Command {

/// Adds `tesseret describe` to the command line; `action` is set when it was chosen.
void addDescribeCommand(CLI::App& app, Action& action);

}  // namespace Tesseret::Command
