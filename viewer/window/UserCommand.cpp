#include "viewer/window/UserCommand.h"

#include <algorithm>
#include <array>
#include <cctype>

#include <GLFW/glfw3.h>

#include "viewer/model/InputQueue.h"

namespace Tesseret::Viewer {

namespace {

constexpr auto kRows = std::to_array<UserCommandRow>({
    {UserCommand::OpenPicture, "Open picture...", "Ctrl+O", 'o', 0, true},
    {UserCommand::OpenMatte, "Open matte...", "Ctrl+Shift+O", 'o', 0, true, true},
    {UserCommand::SaveMatte, "Save matte", "Ctrl+M", 'm', 0, true},
    {UserCommand::SaveMatteAs, "Save matte as...", "Ctrl+Shift+M", 'm', 0, true, true},
    {UserCommand::SaveResult, "Save result", "Ctrl+S", 's', 0, true},
    {UserCommand::SaveResultAs, "Save result as...", "Ctrl+Shift+S", 's', 0, true, true},
    {UserCommand::SaveParameters, "Save parameters...", "Ctrl+E", 'e', 0, true},
    {UserCommand::LoadParameters, "Load parameters...", "Ctrl+L", 'l', 0, true},
    {UserCommand::CopyCommandLine, "Copy command line", "Ctrl+Shift+C", 'c', 0, true, true},
    {UserCommand::Quit, "Quit", "Ctrl+Q", 'q', 0, true},
    {UserCommand::Undo, "Undo", "Ctrl+Z", 'z', 0, true},
    {UserCommand::Redo, "Redo", "Ctrl+Shift+Z", 'z', 0, true, true},
    {UserCommand::GrowMatte, "Grow matte", "Ctrl+G", 'g', 0, true},
    {UserCommand::ShrinkMatte, "Shrink matte", "Ctrl+Shift+G", 'g', 0, true, true},
    {UserCommand::ClearMatte, "Clear matte", "Delete", 0, GLFW_KEY_DELETE},
    {UserCommand::ShowMatte, "Show matte", "M", 'm'},
    {UserCommand::SmallerBrush, "Smaller brush", "[", '['},
    {UserCommand::LargerBrush, "Larger brush", "]", ']'},
    {UserCommand::NextSeed, "Next seed", "N", 'n'},
    {UserCommand::ChooseSettings, "Choose settings", "C", 'c'},
    {UserCommand::ChooseThoroughly, "Choose settings, longer", "Shift+C", 'c', 0, false, true},
    {UserCommand::StopChoosing, "Stop choosing", "Escape", 0, GLFW_KEY_ESCAPE},
    {UserCommand::Fit, "Fit picture", "F", 'f'},
    {UserCommand::ActualSize, "100 %", "1", '1'},
    {UserCommand::ShowHole, "Zoom to the matte", "H", 'h'},
    {UserCommand::Play, "Play", "Space", 0, GLFW_KEY_SPACE},
    {UserCommand::PreviousFrame, "Previous frame", "Left", 0, GLFW_KEY_LEFT},
    {UserCommand::NextFrame, "Next frame", "Right", 0, GLFW_KEY_RIGHT},
    {UserCommand::ShowKeys, "Mouse and keys", "F1", 0, GLFW_KEY_F1},
});

struct MouseRow {
    const char *what, *effect;
};

constexpr auto kMouse = std::to_array<MouseRow>({
    {"Left button", "paints with the tool, or drags the sample box"},
    {"Right button", "erases with the tool"},
    {"Middle button", "moves the picture"},
    {"Wheel", "zooms about the pointer"},
    {"Enter, Escape", "close or drop what is being drawn"},
});

bool isLetter(const KeyEvent& key, char letter)
{
    const char* const name = glfwGetKeyName(key.key, key.scancode);
    return name != nullptr && name[1] == 0 &&
           std::tolower(static_cast<unsigned char>(name[0])) == letter;
}

/// GLFW identifies keys by position; the letter is that of the user's keyboard layout.
bool isOn(const UserCommandRow& row, const KeyEvent& key)
{
    if (row.letter == 0) return row.key == key.key;
    return isLetter(key, row.letter);
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

std::vector<std::pair<std::string, std::string>> keyRows()
{
    std::vector<std::pair<std::string, std::string>> rows;
    for (const MouseRow& row : kMouse) rows.emplace_back(row.what, row.effect);
    for (const ToolRow& row : toolRows()) {
        rows.emplace_back(std::string(1, static_cast<char>(std::toupper(row.letter))),
                          std::string(row.label) + ": " + row.help);
    }
    for (const UserCommandRow& row : kRows) rows.emplace_back(row.keys, row.label);
    return rows;
}

std::string keysText()
{
    constexpr std::size_t kColumn = 15;
    std::string text;
    for (auto& [keys, effect] : keyRows()) {
        keys.resize(std::max(keys.size() + 1, kColumn), ' ');
        text += "\n  " + keys + effect;
    }
    return text;
}

std::optional<ToolKind> toolFor(const KeyEvent& key, bool isTyping)
{
    if (isTyping || key.modifiers != 0) return std::nullopt;
    for (const ToolRow& row : toolRows()) {
        if (isLetter(key, row.letter)) return row.kind;
    }
    return std::nullopt;
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
