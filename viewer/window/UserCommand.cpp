#include "viewer/window/UserCommand.h"

#include <array>
#include <cctype>

#include <GLFW/glfw3.h>

#include "viewer/model/InputQueue.h"

namespace Tesseret::Viewer {

namespace {

constexpr auto kRows = std::to_array<UserCommandRow>({
    {UserCommand::SaveResult, "Save result", "Ctrl+S", 's', 0, true},
    {UserCommand::SaveResultAs, "Save result as...", "Ctrl+Shift+S", 's', 0, true, true},
    {UserCommand::SaveParameters, "Save parameters...", "Ctrl+E", 'e', 0, true},
    {UserCommand::LoadParameters, "Load parameters...", "Ctrl+O", 'o', 0, true},
    {UserCommand::CopyCommandLine, "Copy command line", "Ctrl+Shift+C", 'c', 0, true, true},
    {UserCommand::Quit, "Quit", "Ctrl+Q", 'q', 0, true},
    {UserCommand::Undo, "Undo", "Ctrl+Z", 'z', 0, true},
    {UserCommand::Redo, "Redo", "Ctrl+Shift+Z", 'z', 0, true, true},
    {UserCommand::Fit, "Fit picture", "F", 'f'},
    {UserCommand::PreviousFrame, "Previous frame", "Left", 0, GLFW_KEY_LEFT},
    {UserCommand::NextFrame, "Next frame", "Right", 0, GLFW_KEY_RIGHT},
});

/// GLFW identifies keys by position; the letter is that of the user's keyboard layout.
bool isOn(const UserCommandRow& row, const KeyEvent& key)
{
    if (row.letter == 0) return row.key == key.key;
    const char* const name = glfwGetKeyName(key.key, key.scancode);
    return name != nullptr && name[1] == 0 &&
           std::tolower(static_cast<unsigned char>(name[0])) == row.letter;
}

/// A text field has its own undo.
bool belongsToText(UserCommand command)
{
    return command == UserCommand::Undo || command == UserCommand::Redo;
}

}  // namespace

std::span<const UserCommandRow> userCommands()
{
    return kRows;
}

const UserCommandRow& rowOf(UserCommand command)
{
    for (const UserCommandRow& row : kRows) {
        if (row.command == command) return row;
    }
    return kRows.front();
}

std::optional<UserCommand> userCommandFor(const KeyEvent& key, bool isTyping)
{
    const bool control = (key.modifiers & GLFW_MOD_CONTROL) != 0;
    const bool shift = (key.modifiers & GLFW_MOD_SHIFT) != 0;
    if ((key.modifiers & (GLFW_MOD_ALT | GLFW_MOD_SUPER)) != 0) return std::nullopt;
    for (const UserCommandRow& row : kRows) {
        if (isTyping && (!control || belongsToText(row.command))) continue;
        if (row.control == control && row.shift == shift && isOn(row, key)) return row.command;
    }
    return std::nullopt;
}

}  // namespace Tesseret::Viewer
