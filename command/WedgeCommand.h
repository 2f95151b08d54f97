#pragma once

#include <CLI/CLI.hpp>

#include "command/Action.h"

namespace Tesseret::Command {

/// Adds `tesseret wedge`.
void addWedgeCommand(CLI::App& app, Action& action);

}  // namespace Tesseret::Command
