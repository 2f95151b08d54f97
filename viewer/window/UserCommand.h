#pragma once

/// The commands of the viewer, from a menu or by a shortcut.

#include <optional>
#include <span>

namespace Tesseret::Viewer {

struct KeyEvent;

enum class UserCommand {
    SaveResult,
    SaveResultAs,
    SaveParameters,
    LoadParameters,
    CopyCommandLine,
    Quit,
    Undo,
    Redo,
    Fit,
    PreviousFrame,
    NextFrame,
};

struct UserCommandRow {
    UserCommand command;
    const char* label;
    const char* keys;  ///< the shortcut as shown to the user; empty without one
    char letter = 0;   ///< of the shortcut, in the user's keyboard layout; 0 when `key` is used
    int key = 0;       ///< as GLFW counts them
    bool control = false, shift = false;
};

std::span<const UserCommandRow> userCommands();
const UserCommandRow& rowOf(UserCommand command);

/// The command of a pressed key. During text input, plain keys and undo belong to the text field.
std::optional<UserCommand> userCommandFor(const KeyEvent& key, bool isTyping);

}  // namespace Tesseret::Viewer
