#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace Tesseret::Command {

/// A subcommand's work, run after the command line was understood; returns the exit code.
using Action = std::function<int()>;

/// Adds `tesseret render` to the command line; `action` is set when it was chosen.
void addRenderCommand(CLI::App& app, Action& action);

}  // namespace Tesseret::Command
