#include "viewer/window/PathDialog.h"

#include <algorithm>
#include <exception>
#include <utility>

#include <imgui/imgui.h>
#include <imgui/imgui_stdlib.h>

#include "viewer/model/PathCompletion.h"

namespace Tesseret::Viewer {

namespace {

constexpr float kWidth = 460.0f;  ///< screen units
constexpr std::size_t kMostNames = 200;
constexpr const char* kId = "###path";
const ImVec4 kErrorColour{0.95f, 0.42f, 0.36f, 1.0f};

float widthOf(float window)
{
    return std::min(kWidth, window - 60.0f);
}

}  // namespace

void PathDialog::ask(const std::string& question, const std::filesystem::path& proposed, Use use)
{
    question_ = question;
    text_ = proposed.string();
    error_.clear();
    use_ = std::move(use);
    named_.reset();
    wantsOpening_ = true;
}

void PathDialog::close()
{
    use_ = nullptr;
    ImGui::CloseCurrentPopup();
}

/// The use may ask the next question.
void PathDialog::confirm()
{
    const Use use = std::exchange(use_, nullptr);
    try {
        error_.clear();
        use(expandHome(text_));
        ImGui::CloseCurrentPopup();
    } catch (const std::exception& error) {
        error_ = error.what();
        use_ = use;
        wantsFocus_ = true;
    }
}

/// The files and folders that the text may mean; a click takes one.
void PathDialog::drawNames()
{
    if (named_ != text_) {
        named_ = text_;
        names_ = completePath(text_).names;
    }
    const float lines = std::clamp(float(names_.size()), 1.0f, 6.0f);
    ImGui::BeginChild("names", {0.0f, lines * ImGui::GetTextLineHeightWithSpacing() + 6.0f});
    if (names_.empty()) ImGui::TextDisabled("A new name, or Tab completes what exists.");
    std::string chosen;
    for (std::size_t i = 0; i < std::min(names_.size(), kMostNames); ++i) {
        if (ImGui::Selectable(names_[i].c_str(), false, ImGuiSelectableFlags_DontClosePopups)) {
            chosen = names_[i];
        }
    }
    ImGui::EndChild();
    if (chosen.empty()) return;
    text_ = withName(text_, chosen);
    wantsFocus_ = true;
}

/// A proposed name is selected, so that typing replaces it and not its folder.
void PathDialog::placeCursor(ImGuiInputTextCallbackData& data)
{
    const auto length = data.BufTextLen;
    const std::string text(data.Buf, static_cast<std::size_t>(length));
    data.CursorPos = data.SelectionEnd = length;
    data.SelectionStart = selectsName_ ? int(withName(text, "").size()) : length;
    placesCursor_ = false;
}

/// Tab: the library's text is replaced by the completed one.
void PathDialog::complete(ImGuiInputTextCallbackData& data)
{
    const std::string text(data.Buf, static_cast<std::size_t>(data.BufTextLen));
    data.DeleteChars(0, data.BufTextLen);
    data.InsertChars(0, completePath(text).text.c_str());
}

/// Whether Enter was pressed.
bool PathDialog::drawField()
{
    const bool isNew = std::exchange(wantsOpening_, false);
    if (isNew || std::exchange(wantsFocus_, false)) {
        ImGui::SetKeyboardFocusHere();
        placesCursor_ = true;
        selectsName_ = isNew;
    }
    constexpr int kFlags = ImGuiInputTextFlags_EnterReturnsTrue |
                           ImGuiInputTextFlags_CallbackCompletion |
                           ImGuiInputTextFlags_CallbackAlways;
    const auto follow = [](ImGuiInputTextCallbackData* data) {
        auto& dialog = *static_cast<PathDialog*>(data->UserData);
        if (data->EventFlag == ImGuiInputTextFlags_CallbackCompletion) complete(*data);
        if (dialog.placesCursor_) dialog.placeCursor(*data);
        return 0;
    };
    return ImGui::InputText("##name", &text_, kFlags, follow, this);
}

void PathDialog::draw()
{
    const std::string title = question_ + kId;
    if (wantsOpening_) ImGui::OpenPopup(title.c_str());
    const ImGuiViewport& screen = *ImGui::GetMainViewport();
    ImGui::SetNextWindowPos(screen.GetCenter(), ImGuiCond_Appearing, {0.5f, 0.5f});
    if (!ImGui::BeginPopupModal(title.c_str(), nullptr, ImGuiWindowFlags_AlwaysAutoResize)) return;
    const float width = widthOf(screen.Size.x);
    ImGui::Dummy({width, 0.0f});
    ImGui::SetNextItemWidth(width);
    bool isConfirmed = drawField();
    if (!error_.empty()) {
        ImGui::PushTextWrapPos(width);
        ImGui::TextColored(kErrorColour, "%s", error_.c_str());
        ImGui::PopTextWrapPos();
    }
    drawNames();
    if (ImGui::Button("OK", {100.0f, 0.0f})) isConfirmed = true;
    ImGui::SameLine();
    const bool isCancelled = ImGui::Button("Cancel", {100.0f, 0.0f}) ||
                             ImGui::IsKeyPressed(ImGui::GetKeyIndex(ImGuiKey_Escape));
    if (isConfirmed && !text_.empty()) {
        confirm();
    } else if (isCancelled) {
        close();
    }
    ImGui::EndPopup();
}

}  // namespace Tesseret::Viewer
