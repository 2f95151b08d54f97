#pragma once

#include <CLI/CLI.hpp>

#include "command/Action.h"

namespace Tesseret::Command {

/// Adds `tesseret hosts` to the command line; `action` is set when it was chosen.
void addHostsCommand(CLI::App& app, Action& action);

}  // namespace Tesseret::Command
