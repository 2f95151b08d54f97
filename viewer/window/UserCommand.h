#pragma once

/// The commands of the viewer, from a menu or by a shortcut.

#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "viewer/model/MatteTools.h"

namespace Tesseret::Viewer {

struct KeyEvent;

enum class UserCommand {
    OpenPicture,
    OpenMatte,
    SaveMatte,
    SaveMatteAs,
    SaveResult,
    SaveResultAs,
    SaveParameters,
    LoadParameters,
    CopyCommandLine,
    Quit,
    Undo,
    Redo,
    GrowMatte,
    ShrinkMatte,
    ClearMatte,
    ShowMatte,
    SmallerBrush,
    LargerBrush,
    NextSeed,
    ChooseSettings,
    ChooseThoroughly,
    StopChoosing,
    Fit,
    ActualSize,
    ShowHole,
    Play,
    PreviousFrame,
    NextFrame,
    ShowKeys,
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
/// All keys and what the mouse does: key and effect.
std::vector<std::pair<std::string, std::string>> keyRows();
/// The same as text, a line each.
std::string keysText();
const UserCommandRow& rowOf(UserCommand command);

/// The tool of a pressed key.
std::optional<ToolKind> toolFor(const KeyEvent& key, bool isTyping);
/// The command of a pressed key. During text input, plain keys and undo belong to the text field.
std::optional<UserCommand> userCommandFor(const KeyEvent& key, bool isTyping);

}  // namespace Tesseret::Viewer
