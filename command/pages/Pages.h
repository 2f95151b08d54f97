#pragma once

#include <string>

#include "command/pages/CommandModel.h"

namespace Tesseret::Command {

/// The manual page tesseret(1), in the man macros of roff.
std::string manualPage(const CommandModel& program, const std::string& version);

/// Completions: a script that bash, zsh or fish loads by the program's name.
std::string bashCompletion(const CommandModel& program);
std::string zshCompletion(const CommandModel& program);
std::string fishCompletion(const CommandModel& program);

}  // namespace Tesseret::Command
