#include "viewer/window/Toolbar.h"

#include <imgui/imgui.h>

namespace Tesseret::Viewer {

namespace {

struct Menu {
    const char* label;
    std::initializer_list<UserCommand> commands;
};

bool isPossible(UserCommand command, ViewSession& session)
{
    switch (command) {
        case UserCommand::Undo:
            return session.canUndo();
        case UserCommand::Redo:
            return session.canRedo();
        case UserCommand::PreviousFrame:
            return session.frame() != session.frames().front();
        case UserCommand::NextFrame:
            return session.frame() != session.frames().back();
        default:
            return true;
    }
}

bool drawItem(UserCommand command, ViewSession& session)
{
    const UserCommandRow& row = rowOf(command);
    return ImGui::MenuItem(row.label, row.keys, false, isPossible(command, session));
}

/// A button that stays pressed while its layer is shown.
bool drawLayerButton(Layer layer, bool isChosen)
{
    if (isChosen) {
        ImGui::PushStyleColor(ImGuiCol_Button, ImGui::GetStyleColorVec4(ImGuiCol_TabActive));
        ImGui::PushStyleColor(ImGuiCol_ButtonHovered, ImGui::GetStyleColorVec4(ImGuiCol_TabActive));
    }
    const bool isPressed = ImGui::Button(layerLabel(layer));
    if (isChosen) ImGui::PopStyleColor(2);
    return isPressed;
}

}  // namespace

std::optional<UserCommand> drawMenus(ViewSession& session)
{
    const std::initializer_list<Menu> menus{
        {"File",
         {UserCommand::SaveResult, UserCommand::SaveResultAs, UserCommand::SaveParameters,
          UserCommand::LoadParameters, UserCommand::CopyCommandLine, UserCommand::Quit}},
        {"Edit", {UserCommand::Undo, UserCommand::Redo}},
        {"View", {UserCommand::Fit, UserCommand::PreviousFrame, UserCommand::NextFrame}},
    };
    std::optional<UserCommand> chosen;
    for (const Menu& menu : menus) {
        if (!ImGui::BeginMenu(menu.label)) continue;
        for (const UserCommand command : menu.commands) {
            if (drawItem(command, session)) chosen = command;
        }
        ImGui::EndMenu();
    }
    return chosen;
}

void drawLayerButtons(PictureLayers& layers)
{
    for (int i = 0; i < kLayerCount; ++i) {
        const auto layer = static_cast<Layer>(i);
        if (i > 0) ImGui::SameLine(0.0f, layer == Layer::FillMask ? 20.0f : 4.0f);
        if (drawLayerButton(layer, layer == layers.layer())) layers.choose(layer);
    }
}

}  // namespace Tesseret::Viewer
