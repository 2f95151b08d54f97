#include "viewer/window/PathDialog.h"

#include <utility>

#include <imgui/imgui.h>
#include <imgui/imgui_stdlib.h>

namespace Tesseret::Viewer {

namespace {

constexpr float kWidth = 460.0f;  ///< screen units
constexpr const char* kId = "###path";

}  // namespace

void PathDialog::ask(const std::string& question, const std::filesystem::path& proposed, Use use)
{
    question_ = question;
    text_ = proposed.string();
    use_ = std::move(use);
    wantsOpening_ = true;
}

void PathDialog::close()
{
    use_ = nullptr;
    ImGui::CloseCurrentPopup();
}

void PathDialog::draw()
{
    const std::string title = question_ + kId;
    if (wantsOpening_) ImGui::OpenPopup(title.c_str());
    const ImVec2 centre = ImGui::GetMainViewport()->GetCenter();
    ImGui::SetNextWindowPos(centre, ImGuiCond_Appearing, {0.5f, 0.5f});
    if (!ImGui::BeginPopupModal(title.c_str(), nullptr, ImGuiWindowFlags_AlwaysAutoResize)) return;
    if (std::exchange(wantsOpening_, false)) ImGui::SetKeyboardFocusHere();
    ImGui::SetNextItemWidth(kWidth);
    constexpr int kFlags = ImGuiInputTextFlags_EnterReturnsTrue | ImGuiInputTextFlags_AutoSelectAll;
    bool isConfirmed = ImGui::InputText("##name", &text_, kFlags);
    if (ImGui::Button("OK", {100.0f, 0.0f})) isConfirmed = true;
    ImGui::SameLine();
    const bool isCancelled = ImGui::Button("Cancel", {100.0f, 0.0f}) ||
                             ImGui::IsKeyPressed(ImGui::GetKeyIndex(ImGuiKey_Escape));
    if (isConfirmed && !text_.empty()) {
        const Use use = use_;
        close();
        use(text_);
    } else if (isCancelled) {
        close();
    }
    ImGui::EndPopup();
}

}  // namespace Tesseret::Viewer
