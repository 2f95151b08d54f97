#pragma once

/// The options of a command as words again, for another process to be given.

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace Tesseret::Command {

/// The words of the options that were given, but for positional ones; files and folders by their
/// absolute names.
std::vector<std::string> wordsOf(const std::vector<const CLI::Option*>& options);

}  // namespace Tesseret::Command
