#pragma once

/// What a subcommand does once its options are read, and how the program ends.

#include <functional>

namespace Tesseret::Command {

/// Returns the exit code; failures are exceptions.
using Action = std::function<int()>;

inline constexpr int kExitFailed = 1;  ///< a render began and failed
inline constexpr int kExitUsage = 2;   ///< the request cannot be carried out
inline constexpr int kExitInterrupted = 130;

}  // namespace Tesseret::Command
