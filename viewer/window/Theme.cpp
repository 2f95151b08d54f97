#include "viewer/window/Theme.h"

#include <array>
#include <filesystem>

#include <imgui/imgui.h>

namespace Tesseret::Viewer {

namespace {

constexpr float kFontSize = 16.0f;  ///< screen units

/// Fonts of common systems with every letter of the labels. The first existing one is used, else
/// the library's own, which has only one size.
constexpr std::array kFontFiles{
    "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
    "/usr/share/fonts/TTF/DejaVuSans.ttf",
    "/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf",
};

const ImVec4 kText{0.88f, 0.89f, 0.90f, 1.0f};
const ImVec4 kFaint{0.56f, 0.58f, 0.60f, 1.0f};
const ImVec4 kPanel{0.145f, 0.150f, 0.160f, 1.0f};
const ImVec4 kBar{0.115f, 0.120f, 0.128f, 1.0f};
const ImVec4 kField{0.205f, 0.213f, 0.228f, 1.0f};
const ImVec4 kFieldHovered{0.255f, 0.268f, 0.290f, 1.0f};
const ImVec4 kFieldHeld{0.290f, 0.310f, 0.340f, 1.0f};
const ImVec4 kAccent{0.86f, 0.60f, 0.24f, 1.0f};
const ImVec4 kAccentBright{0.96f, 0.71f, 0.33f, 1.0f};
const ImVec4 kAccentDim{0.47f, 0.35f, 0.18f, 1.0f};
const ImVec4 kShade{0.0f, 0.0f, 0.0f, 0.5f};
const ImVec4 kLine{0.27f, 0.28f, 0.30f, 1.0f};

/// Latin, Greek, Cyrillic, punctuation, arrows: pairs of first and last, ended by 0.
constexpr std::array<ImWchar, 7> kLetters{0x20, 0x52f, 0x2010, 0x205f, 0x2190, 0x21ff, 0};
constexpr ImWchar kResetArrow = 0x21ba;

void loadFont(double density)
{
    ImGuiIO& io = ImGui::GetIO();
    for (const char* const file : kFontFiles) {
        if (!std::filesystem::exists(file)) continue;
        io.Fonts->AddFontFromFileTTF(file, kFontSize * float(density), nullptr, kLetters.data());
        io.FontGlobalScale = 1.0f / float(density);
        return;
    }
    io.Fonts->AddFontDefault();
    io.FontGlobalScale = kFontSize / 13.0f;
}

void setShapes(ImGuiStyle& style)
{
    style.WindowPadding = {12.0f, 10.0f};
    style.FramePadding = {8.0f, 4.0f};
    style.ItemSpacing = {8.0f, 7.0f};
    style.ItemInnerSpacing = {6.0f, 4.0f};
    style.WindowRounding = 0.0f;
    style.PopupRounding = 4.0f;
    style.FrameRounding = 3.0f;
    style.GrabRounding = 3.0f;
    style.GrabMinSize = 12.0f;
    style.TabRounding = 3.0f;
    style.ScrollbarSize = 12.0f;
    style.WindowBorderSize = 0.0f;
}

void setFieldColours(ImVec4* colours)
{
    colours[ImGuiCol_FrameBg] = colours[ImGuiCol_Button] = kField;
    colours[ImGuiCol_FrameBgHovered] = colours[ImGuiCol_ButtonHovered] = kFieldHovered;
    colours[ImGuiCol_FrameBgActive] = colours[ImGuiCol_ButtonActive] = kFieldHeld;
    colours[ImGuiCol_SliderGrab] = colours[ImGuiCol_CheckMark] = kAccent;
    colours[ImGuiCol_SliderGrabActive] = kAccentBright;
    colours[ImGuiCol_PlotHistogram] = kAccent;
    colours[ImGuiCol_TextSelectedBg] = kAccentDim;
    colours[ImGuiCol_Header] = kField;
    colours[ImGuiCol_HeaderHovered] = kFieldHovered;
    colours[ImGuiCol_HeaderActive] = kFieldHeld;
    colours[ImGuiCol_Tab] = kPanel;
    colours[ImGuiCol_TabHovered] = kFieldHovered;
    colours[ImGuiCol_TabActive] = kAccentDim;
}

}  // namespace

void applyTheme(double density)
{
    ImGui::StyleColorsDark();
    ImGuiStyle& style = ImGui::GetStyle();
    setShapes(style);
    setFieldColours(style.Colors);
    style.Colors[ImGuiCol_Text] = kText;
    style.Colors[ImGuiCol_TextDisabled] = kFaint;
    style.Colors[ImGuiCol_WindowBg] = kPanel;
    style.Colors[ImGuiCol_MenuBarBg] = kBar;
    style.Colors[ImGuiCol_PopupBg] = kBar;
    style.Colors[ImGuiCol_TitleBgActive] = kField;
    style.Colors[ImGuiCol_ModalWindowDimBg] = kShade;
    style.Colors[ImGuiCol_Separator] = style.Colors[ImGuiCol_Border] = kLine;
    ImGui::GetIO().ConfigDragClickToInputText = true;
    loadFont(density);
}

ImVec4 adviceColour()
{
    return kAccentBright;
}

const char* resetMark()
{
    return ImGui::GetFont()->FindGlyphNoFallback(kResetArrow) != nullptr ? "\u21ba" : "x";
}

}  // namespace Tesseret::Viewer
