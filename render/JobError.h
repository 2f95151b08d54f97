#pragma once

/// The errors that end a job; the text is for the user.

#include <stdexcept>

namespace Tesseret::Render {

/// The request cannot be carried out: one line.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The render began and failed.
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
