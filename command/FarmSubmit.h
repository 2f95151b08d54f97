#pragma once

#include <CLI/CLI.hpp>

#include "command/Action.h"

namespace Tesseret::Command {

/// Adds `submit` to `tesseret farm`; `action` is set when it was chosen.
void addFarmSubmit(CLI::App& farm, Action& action);

}  // namespace Tesseret::Command
