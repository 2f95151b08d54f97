#pragma once

#include <CLI/CLI.hpp>

#include "command/Action.h"

namespace Tesseret::Command {

/// Adds `tesseret inspect` to the command line; `action` is set when it was chosen.
void addInspectCommand(CLI::App& app, Action& action);

}  // namespace Tesseret::Command
