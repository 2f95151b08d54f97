#pragma once

#include <exception>

namespace Tesseret::Command {

/// Runs `tesseret` with its arguments, the program's name first, on the standard streams. Returns
/// the exit code; every failure is a line on standard error.
int runCommandLine(int argc, const char* const* argv);

/// Prints why a command failed and returns its exit code.
int printFailure(const std::exception& error);

}  // namespace Tesseret::Command
