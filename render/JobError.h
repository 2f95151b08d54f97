#pragma once

/// The errors that end a job; the text is for the user.

#include <stdexcept>

namespace Tesseret::Render {

/// The request cannot be carried out: one line.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The plug-in cannot repeat the blocks of a saved fill: one line.
class SavedFillRefused : public UsageError {
public:
    using UsageError::UsageError;
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
