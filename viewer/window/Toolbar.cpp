#include "viewer/window/Toolbar.h"

#include <algorithm>
#include <cmath>
#include <string>

#include <imgui/imgui.h>

namespace Tesseret::Viewer {

namespace {

constexpr float kGap = 4.0f, kGroupGap = 9.0f;  ///< screen units
constexpr float kSliderWidth = 76.0f;
const ImVec2 kToolPadding{5.0f, 4.0f};

struct Menu {
    const char* label;
    std::initializer_list<UserCommand> commands;
};

bool needsNoPicture(UserCommand command)
{
    return command == UserCommand::OpenPicture || command == UserCommand::Quit ||
           command == UserCommand::ShowKeys;
}

bool isPossible(UserCommand command, const ViewSession* session)
{
    if (session == nullptr) return needsNoPicture(command);
    switch (command) {
        case UserCommand::Undo:
            return session->canUndo();
        case UserCommand::Redo:
            return session->canRedo();
        case UserCommand::OpenMatte:
            return session->paintObstacle().empty();
        case UserCommand::GrowMatte:
        case UserCommand::ShrinkMatte:
        case UserCommand::ClearMatte:
            return session->paintObstacle().empty() && session->hasPaint();
        case UserCommand::ShowHole:
            return session->hasPaint();
        case UserCommand::SaveMatte:
        case UserCommand::SaveMatteAs:
        case UserCommand::ShowMatte:
            return session->matte() != nullptr;
        case UserCommand::ChooseSettings:
        case UserCommand::ChooseThoroughly:
            return session->chooseObstacle().empty() && !session->search().isBusy();
        case UserCommand::StopChoosing:
            return session->search().state().isRunning;
        case UserCommand::Play:
            return session->frames().size() > 1;
        case UserCommand::PreviousFrame:
            return session->frame() != session->frames().front();
        case UserCommand::NextFrame:
            return session->frame() != session->frames().back();
        default:
            return true;
    }
}

/// Places items side by side, and on a new row where they do not fit.
class Flow {
public:
    /// Before each item.
    void next(float width, float gap = kGap)
    {
        if (std::exchange(isFirst_, false)) return;
        const float end = ImGui::GetItemRectMax().x + gap + width;
        const float right = ImGui::GetWindowPos().x + ImGui::GetContentRegionMax().x;
        if (end <= right) ImGui::SameLine(0.0f, gap);
    }
    /// As wide as its label, or as another one.
    bool button(const char* label, float gap = kGap, const char* widest = nullptr)
    {
        const float width = ImGui::CalcTextSize(widest != nullptr ? widest : label).x +
                            2.0f * ImGui::GetStyle().FramePadding.x;
        next(width, gap);
        return ImGui::Button(label, {width, 0.0f});
    }
    /// A button that stays pressed while it is chosen.
    bool choice(const char* label, bool isChosen, float gap = kGap)
    {
        if (isChosen) {
            const ImVec4 colour = ImGui::GetStyleColorVec4(ImGuiCol_TabActive);
            ImGui::PushStyleColor(ImGuiCol_Button, colour);
            ImGui::PushStyleColor(ImGuiCol_ButtonHovered, colour);
        }
        const bool isPressed = button(label, gap);
        if (isChosen) ImGui::PopStyleColor(2);
        return isPressed;
    }
    std::optional<UserCommand> command(UserCommand command, const char* label,
                                       const ViewSession& session, float gap,
                                       const char* widest = nullptr)
    {
        const UserCommandRow& row = rowOf(command);
        ImGui::BeginDisabled(!isPossible(command, &session));
        const bool isPressed = button(label, gap, widest);
        ImGui::EndDisabled();
        tip(row.label, row.keys);
        return isPressed ? std::optional(command) : std::nullopt;
    }
    static void tip(const std::string& text, const std::string& keys)
    {
        if (ImGui::IsItemHovered()) ImGui::SetTooltip("%s (%s)", text.c_str(), keys.c_str());
    }

private:
    bool isFirst_ = true;
};

void drawLayers(Flow& flow, PictureLayers& layers)
{
    for (const Layer layer : {Layer::Source, Layer::Result, Layer::Split}) {
        if (flow.choice(layerLabel(layer), layer == layers.layer())) layers.choose(layer);
    }
    const bool showsMap = !mapName(layers.layer()).empty();
    const char* const label = showsMap ? layerLabel(layers.layer()) : "Maps";
    if (flow.choice(label, showsMap)) ImGui::OpenPopup("maps");
    if (ImGui::IsItemHovered()) ImGui::SetTooltip("What the fill was made with");
    if (!ImGui::BeginPopup("maps")) return;
    for (int i = 0; i < kLayerCount; ++i) {
        const auto layer = static_cast<Layer>(i);
        if (mapName(layer).empty()) continue;
        if (ImGui::Selectable(layerLabel(layer), layer == layers.layer())) layers.choose(layer);
    }
    ImGui::EndPopup();
}

void drawTools(Flow& flow, const ViewSession& session, ToolBox& tools)
{
    float gap = kGroupGap;
    for (const ToolRow& row : toolRows()) {
        const bool isBox = row.kind == ToolKind::SampleBox;
        if (isBox ? !session.sampleBox() : !session.paintObstacle().empty()) continue;
        if (flow.choice(row.label, row.kind == tools.kind(), gap)) tools.choose(row.kind);
        Flow::tip(row.help, std::string(1, static_cast<char>(std::toupper(row.letter))));
        gap = kGap;
    }
}

/// The button begins a search, and ends it.
std::optional<UserCommand> drawChoice(Flow& flow, const ViewSession& session)
{
    constexpr const char* kChoose = "Choose settings";
    const bool isRunning = session.search().state().isRunning;
    ImGui::PushStyleColor(ImGuiCol_Button, ImGui::GetStyleColorVec4(ImGuiCol_TabActive));
    const auto pressed =
        isRunning ? flow.command(UserCommand::StopChoosing, "Stop", session, kGroupGap, kChoose)
                  : flow.command(UserCommand::ChooseSettings, kChoose, session, kGroupGap);
    ImGui::PopStyleColor();
    return pressed;
}

void drawBrushSliders(Flow& flow, Brush& brush)
{
    // The text stands over the grab.
    ImGui::PushStyleVar(ImGuiStyleVar_GrabMinSize, 6.0f);
    ImGui::PushStyleColor(ImGuiCol_SliderGrab, ImGui::GetStyleColorVec4(ImGuiCol_TabActive));
    auto size = float(brush.size);
    flow.next(kSliderWidth, kGroupGap);
    ImGui::SetNextItemWidth(kSliderWidth);
    if (ImGui::SliderFloat("##size", &size, float(Brush::kMinSize), 500.0f, "Size %.0f",
                           ImGuiSliderFlags_Logarithmic)) {
        brush.size = std::clamp(double(std::round(size)), Brush::kMinSize, Brush::kMaxSize);
    }
    Flow::tip("The brush's diameter in pixels", "[ and ]");
    auto softness = float(brush.softness * 100.0);
    flow.next(kSliderWidth);
    ImGui::SetNextItemWidth(kSliderWidth);
    if (ImGui::SliderFloat("##softness", &softness, 0.0f, 100.0f, "Soft %.0f %%",
                           ImGuiSliderFlags_AlwaysClamp)) {
        brush.softness = double(std::round(softness)) / 100.0;
    }
    if (ImGui::IsItemHovered()) {
        ImGui::SetTooltip("How much of the brush fades. All of the rim is filled too.");
    }
    ImGui::PopStyleColor();
    ImGui::PopStyleVar();
}

}  // namespace

std::optional<UserCommand> drawMenus(ViewSession* session, bool isPlaying)
{
    const std::initializer_list<Menu> menus{
        {"File",
         {UserCommand::OpenPicture, UserCommand::SaveResult, UserCommand::SaveResultAs,
          UserCommand::SaveParameters, UserCommand::LoadParameters, UserCommand::CopyCommandLine,
          UserCommand::Quit}},
        {"Edit",
         {UserCommand::Undo, UserCommand::Redo, UserCommand::ChooseSettings,
          UserCommand::ChooseThoroughly, UserCommand::StopChoosing, UserCommand::NextSeed}},
        {"Matte",
         {UserCommand::OpenMatte, UserCommand::SaveMatte, UserCommand::SaveMatteAs,
          UserCommand::GrowMatte, UserCommand::ShrinkMatte, UserCommand::ClearMatte,
          UserCommand::ShowMatte}},
        {"View",
         {UserCommand::Fit, UserCommand::ActualSize, UserCommand::ShowHole, UserCommand::Play,
          UserCommand::PreviousFrame, UserCommand::NextFrame}},
        {"Help", {UserCommand::ShowKeys}},
    };
    std::optional<UserCommand> chosen;
    for (const Menu& menu : menus) {
        if (!ImGui::BeginMenu(menu.label)) continue;
        for (const UserCommand command : menu.commands) {
            const UserCommandRow& row = rowOf(command);
            const bool isOn = command == UserCommand::Play && isPlaying;
            if (ImGui::MenuItem(row.label, row.keys, isOn, isPossible(command, session))) {
                chosen = command;
            }
        }
        ImGui::EndMenu();
    }
    return chosen;
}

std::optional<UserCommand> drawToolbar(ViewSession& session, PictureLayers& layers, ToolBox& tools)
{
    ImGui::PushStyleVar(ImGuiStyleVar_FramePadding, kToolPadding);
    Flow flow;
    std::optional<UserCommand> chosen;
    const auto offer = [&](UserCommand command, const char* label, float gap = kGap) {
        if (const auto pressed = flow.command(command, label, session, gap)) chosen = pressed;
    };
    drawLayers(flow, layers);
    drawTools(flow, session, tools);
    if (hasBrush(tools.kind()) && session.paintObstacle().empty()) {
        drawBrushSliders(flow, tools.brush());
    }
    if (session.paintObstacle().empty()) {
        offer(UserCommand::GrowMatte, "Grow", kGroupGap);
        offer(UserCommand::ShrinkMatte, "Shrink");
        constexpr float kStepWidth = 60.0f;
        flow.next(kStepWidth);
        ImGui::SetNextItemWidth(kStepWidth);
        ImGui::DragFloat("##step", &tools.step(), 0.2f, 1.0f, 200.0f, "by %.0f px",
                         ImGuiSliderFlags_AlwaysClamp);
    }
    if (const auto pressed = drawChoice(flow, session)) chosen = pressed;
    offer(UserCommand::Undo, "Undo", kGroupGap);
    offer(UserCommand::Redo, "Redo");
    ImGui::PopStyleVar();
    return chosen;
}

}  // namespace Tesseret::Viewer
