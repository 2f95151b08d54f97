#pragma once

#include <CLI/CLI.hpp>

#include "command/Action.h"

namespace Tesseret::Command {

/// Gives an empty app all options and subcommands of `tesseret`; `action` is set by the one that
/// was chosen, and both must outlive it.
void buildApp(CLI::App& app, Action& action);

}  // namespace Tesseret::Command
