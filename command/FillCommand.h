#pragma once

#include <CLI/CLI.hpp>

#include "command/Action.h"

namespace Tesseret::Command {

/// Adds `tesseret fill`.
void addFillCommand(CLI::App& app, Action& action);

}  // namespace Tesseret::Command
