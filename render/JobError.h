#pragma once

/// How a job ends when it does not end well; the text is for the user.

#include <stdexcept>

namespace Tesseret::Render {

/// What was asked for cannot be done: one line.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The render began and did not come through.
class RenderFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The user or the system asked to stop.
class Interrupted : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace Tesseret::Render
