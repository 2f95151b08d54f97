#pragma once

/// How a command ends when it does not end well; the text is for the person who typed it.

#include <stdexcept>

namespace Tesseret::Command {

/// What was asked for cannot be done: one line, exit code 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The render began and did not come through: exit code 1.
class RenderFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The person or the system asked to stop: exit code 130.
class Interrupted : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

inline constexpr int kExitFailed = 1;
inline constexpr int kExitUsage = 2;
inline constexpr int kExitInterrupted = 130;

}  // namespace Tesseret::Command
