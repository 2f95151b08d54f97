#pragma once

#include <string>

#include <CLI/CLI.hpp>

namespace Tesseret::Command {

/// What is wrong with a command line, as one line for the user, with what to type instead. `words`
/// are the arguments without the program's name.
std::string parseMessage(const CLI::ParseError& error, const CLI::App& app,
                         const std::vector<std::string>& words);

/// A whole command of the kind, as an example; empty for a command without files.
std::string exampleOf(const std::string& command);

}  // namespace Tesseret::Command
