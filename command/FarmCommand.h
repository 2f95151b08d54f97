#pragma once

#include <CLI/CLI.hpp>

#include "command/Action.h"

namespace Tesseret::Command {

/// Adds `tesseret farm` with its subcommands to the command line; `action` is set when one of them
/// was chosen.
void addFarmCommand(CLI::App& app, Action& action);

}  // namespace Tesseret::Command
