#pragma once

/// What the person can ask the viewer for, from a menu or by a shortcut.

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
    const char* keys;  ///< of the shortcut, for people; empty without one
    char letter = 0;   ///< of the shortcut, on whatever keyboard; 0 when `key` says which
    int key = 0;       ///< as GLFW counts them
    bool control = false, shift = false;
};

std::span<const UserCommandRow> userCommands();
const UserCommandRow& rowOf(UserCommand command);

/// What a key pressed asks for. While something is typed, plain keys
/// and undo belong to the text.
std::optional<UserCommand> userCommandFor(const KeyEvent& key, bool isTyping);

}  // namespace Tesseret::Viewer
