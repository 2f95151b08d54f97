#include "viewer/window/QuestionDialog.h"

#include <algorithm>
#include <utility>

#include <imgui/imgui.h>

namespace Tesseret::Viewer {

namespace {

constexpr float kWidth = 340.0f, kButton = 105.0f;  ///< screen units
constexpr const char* kTitle = "The matte is not saved###question";

}  // namespace

void QuestionDialog::ask(const std::string& question, std::function<void()> save,
                         std::function<void()> drop)
{
    question_ = question;
    save_ = std::move(save);
    drop_ = std::move(drop);
    wantsOpening_ = true;
}

/// The answer may ask the next question.
void QuestionDialog::answer(const std::function<void()>& with)
{
    save_ = drop_ = nullptr;
    ImGui::CloseCurrentPopup();
    if (with) with();
}

void QuestionDialog::draw()
{
    if (std::exchange(wantsOpening_, false)) ImGui::OpenPopup(kTitle);
    const ImGuiViewport& screen = *ImGui::GetMainViewport();
    ImGui::SetNextWindowPos(screen.GetCenter(), ImGuiCond_Appearing, {0.5f, 0.5f});
    if (!ImGui::BeginPopupModal(kTitle, nullptr, ImGuiWindowFlags_AlwaysAutoResize)) return;
    const float width = std::min(kWidth, screen.Size.x - 60.0f);
    ImGui::Dummy({width, 0.0f});
    ImGui::PushTextWrapPos(width);
    ImGui::TextUnformatted(question_.c_str());
    ImGui::PopTextWrapPos();
    ImGui::Spacing();
    const auto isKey = [](ImGuiKey key) { return ImGui::IsKeyPressed(ImGui::GetKeyIndex(key)); };
    const bool isSaved = ImGui::Button("Save", {kButton, 0.0f}) || isKey(ImGuiKey_Enter);
    ImGui::SameLine();
    const bool isDropped = ImGui::Button("Drop", {kButton, 0.0f});
    ImGui::SameLine();
    const bool isCancelled = ImGui::Button("Cancel", {kButton, 0.0f}) || isKey(ImGuiKey_Escape);
    if (isSaved) {
        answer(std::exchange(save_, nullptr));
    } else if (isDropped) {
        answer(std::exchange(drop_, nullptr));
    } else if (isCancelled) {
        answer(nullptr);
    }
    ImGui::EndPopup();
}

}  // namespace Tesseret::Viewer
