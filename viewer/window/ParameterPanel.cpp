#include "viewer/window/ParameterPanel.h"

#include <utility>

#include <imgui/imgui.h>

#include "effect/ParameterNames.h"
#include "render/Boxes.h"
#include "viewer/window/ParameterWidget.h"
#include "viewer/window/Theme.h"

namespace Tesseret::Viewer {

using Host::ParameterDescription;
using Host::ParameterValue;

namespace {

constexpr float kLabelWidth = 158.0f;   ///< screen units
constexpr float kNarrowPanel = 330.0f;  ///< where labels stand above their values
constexpr const char* kBoxName = "the sample box in pixels";  ///< held like a parameter

const std::string& labelOf(const ParameterDescription& parameter)
{
    return parameter.label.empty() ? parameter.name : parameter.label;
}

void drawHint(const ParameterDescription& parameter)
{
    if (!ImGui::IsItemHovered(ImGuiHoveredFlags_AllowWhenDisabled)) return;
    ImGui::BeginTooltip();
    ImGui::PushTextWrapPos(ImGui::GetFontSize() * 22.0f);
    if (!parameter.hint.empty()) ImGui::TextUnformatted(parameter.hint.c_str());
    const std::string range = Render::rangeText(parameter.min, parameter.max);
    ImGui::TextDisabled("%s%s%s", parameter.name.c_str(), range.empty() ? "" : ", ", range.c_str());
    ImGui::PopTextWrapPos();
    ImGui::EndTooltip();
}

}  // namespace

bool ParameterPanel::isDragging() const
{
    return !held_.empty() && !typed_ && ImGui::IsMouseDown(ImGuiMouseButton_Left);
}

void ParameterPanel::draw()
{
    isHeldNow_ = false;
    drawList();
    if (ImGui::BeginTabBar("pages")) {
        for (const PanelPage& page : session_.pages()) {
            if (!ImGui::BeginTabItem(page.label.c_str())) continue;
            drawPage(page);
            ImGui::EndTabItem();
        }
        ImGui::EndTabBar();
    }
    if (!isHeldNow_) letGo();
}

/// Says that the values below are not all there is.
void ParameterPanel::drawList()
{
    const std::string text = session_.listText();
    if (text.empty()) return;
    ImGui::PushTextWrapPos(0.0f);
    ImGui::TextColored(adviceColour(), "%s", text.c_str());
    ImGui::PopTextWrapPos();
    if (ImGui::Button("One setting for all", {-1.0f, 0.0f})) {
        log_.attempt([&] { session_.dropList(); });
    }
    if (ImGui::IsItemHovered()) {
        ImGui::SetTooltip(
            "Fills every area with the values below, and nothing else.\n"
            "A value that you change below is used for all areas in any case.");
    }
    ImGui::Spacing();
}

void ParameterPanel::drawPage(const PanelPage& page)
{
    ImGui::BeginChild("page");
    ImGui::Spacing();
    for (std::size_t i = 0; i < page.columns.size(); ++i) {
        if (i > 0) {
            ImGui::Spacing();
            ImGui::Separator();
            ImGui::Spacing();
        }
        drawColumn(page.columns[i]);
    }
    ImGui::EndChild();
}

void ParameterPanel::drawColumn(const std::vector<std::string>& column)
{
    std::string group;
    bool isOpen = true;
    for (const std::string& name : column) {
        const ParameterDescription* const parameter = session_.description().parameter(name);
        if (parameter == nullptr) {
            ImGui::Dummy({0.0f, ImGui::GetFrameHeight() / 2.0f});
            continue;
        }
        if (parameter->parent != group) {
            group = parameter->parent;
            const ParameterDescription* const parent = session_.description().parameter(group);
            isOpen = parent == nullptr || ImGui::CollapsingHeader(labelOf(*parent).c_str(),
                                                                  ImGuiTreeNodeFlags_DefaultOpen);
        }
        if (isOpen) drawRow(*parameter);
    }
}

/// Where values begin; in a narrow panel below their labels.
float ParameterPanel::drawLabel(const std::string& label)
{
    const bool isNarrow = ImGui::GetContentRegionAvail().x < kNarrowPanel;
    if (label.empty()) return isNarrow ? 0.0f : kLabelWidth;
    ImGui::AlignTextToFramePadding();
    ImGui::TextUnformatted(label.c_str());
    return isNarrow ? 0.0f : kLabelWidth;
}

void ParameterPanel::drawRow(const ParameterDescription& parameter)
{
    if (isUseless(parameter)) return;
    if (parameter.name == Names::kSampleCorner1) drawSampleBox();
    ImGui::PushID(parameter.name.c_str());
    ImGui::BeginDisabled(!parameter.enabled);
    const float gap = ImGui::GetStyle().ItemInnerSpacing.x;
    const float reset = ImGui::GetFrameHeight();
    const float start = ImGui::GetCursorPosX();
    const float whole = ImGui::GetContentRegionAvail().x;
    const float label = drawLabel(parameter.isButton() ? "" : labelOf(parameter));
    const float width = whole - label - reset - gap;
    if (!parameter.isButton()) drawHint(parameter);
    if (!parameter.isButton() && label > 0.0f) ImGui::SameLine();
    ImGui::SetCursorPosX(start + label);
    drawValue(parameter, width);
    if (!parameter.isButton()) {
        ImGui::SameLine(start + label + width + gap);
        drawReset(parameter);
    }
    ImGui::EndDisabled();
    ImGui::PopID();
}

/// Without its texture a switch does nothing.
bool ParameterPanel::isUseless(const ParameterDescription& parameter) const
{
    for (std::size_t i = 0; i < Names::kTextures.size(); ++i) {
        if (parameter.name == Names::kUseTextures[i]) {
            return !session_.inputs().has(Names::kTextures[i]);
        }
    }
    return false;
}

/// Upper left corner, width and height, from the upper left of the picture.
void ParameterPanel::drawSampleBox()
{
    const std::optional<OfxRectI> box = session_.sampleBox();
    if (!box) return;
    const int top = Render::sampledPicture(session_.inputs()).displayWindow.y2;
    if (held_ != kBoxName) {
        boxFields_ = {box->x1, top - box->y2, box->x2 - box->x1, box->y2 - box->y1};
    }
    ImGui::PushID(kBoxName);
    const float start = ImGui::GetCursorPosX();
    const float whole = ImGui::GetContentRegionAvail().x;
    const float label = drawLabel("Sample Box, pixels");
    if (label > 0.0f) ImGui::SameLine();
    ImGui::SetCursorPosX(start + label);
    const float gap = ImGui::GetStyle().ItemInnerSpacing.x;
    const float width = (whole - label - ImGui::GetFrameHeight() - 4.0f * gap) / 4.0f;
    constexpr std::array kHints{"Left edge", "Upper edge, from the top", "Width", "Height"};
    for (std::size_t i = 0; i < boxFields_.size(); ++i) {
        if (i > 0) ImGui::SameLine(0.0f, gap);
        ImGui::PushID(static_cast<int>(i));
        ImGui::SetNextItemWidth(width);
        ImGui::InputInt("##field", &boxFields_[i], 0);
        if (ImGui::IsItemActive()) takeHold(kBoxName);
        if (ImGui::IsItemDeactivatedAfterEdit()) setSampleBox(top);
        if (ImGui::IsItemHovered()) ImGui::SetTooltip("%s", kHints.at(i));
        ImGui::PopID();
    }
    ImGui::PopID();
}

void ParameterPanel::setSampleBox(int top)
{
    const auto [x, y, width, height] = boxFields_;
    log_.attempt([&] {
        session_.setSampleBox(
            {double(x), double(top) - y - height, double(x) + width, double(top) - y});
    });
}

void ParameterPanel::drawValue(const ParameterDescription& parameter, float width)
{
    const bool isHeld = held_ == parameter.name;
    ParameterValue value;
    if (!parameter.isButton()) value = isHeld && typed_ ? *typed_ : session_.value(parameter.name);
    ImGui::BeginGroup();
    const bool changed = parameter.name == Names::kSeed ? drawSeed(parameter, value, width)
                                                        : drawParameter(parameter, value, width);
    ImGui::EndGroup();
    if (parameter.isButton()) {
        drawHint(parameter);
    } else if (ImGui::IsItemActive()) {
        takeHold(parameter.name);
    }
    if (!changed) return;
    if (parameter.isButton()) {
        log_.attempt([&] { session_.press(parameter.name); });
    } else {
        keepOrSet(parameter.name, value);
    }
}

/// Any seed is as good as the next.
bool ParameterPanel::drawSeed(const ParameterDescription& parameter, ParameterValue& value,
                              float width)
{
    auto* const seed = std::get_if<int>(&value);
    if (seed == nullptr) return drawParameter(parameter, value, width);
    const float gap = ImGui::GetStyle().ItemInnerSpacing.x;
    const float half = (width - gap) / 2.0f;
    const bool changed = drawWholeField(parameter, *seed, half);
    const bool isActive = ImGui::IsItemActive();
    ImGui::SameLine(0.0f, gap);
    if (ImGui::Button("Next seed", {half, 0.0f}) && !isActive) {
        log_.attempt([&] { session_.nextSeed(); });
    }
    return changed;
}

void ParameterPanel::drawReset(const ParameterDescription& parameter)
{
    if (session_.value(parameter.name) == parameter.initial) return ImGui::NewLine();
    if (ImGui::Button(resetMark(), {ImGui::GetFrameHeight(), 0.0f})) {
        log_.attempt([&] { session_.reset(parameter.name); });
    }
    if (ImGui::IsItemHovered()) {
        ImGui::SetTooltip("Reset to %s", Render::valueText(parameter, parameter.initial).c_str());
    }
}

void ParameterPanel::keepOrSet(const std::string& name, const ParameterValue& value)
{
    const bool isTyping = held_ == name && !ImGui::IsMouseDown(ImGuiMouseButton_Left);
    if (isTyping) {
        typed_ = value;
    } else {
        set(name, value);
    }
}

void ParameterPanel::set(const std::string& name, const ParameterValue& value)
{
    log_.attempt([&] { session_.set(name, value); });
}

void ParameterPanel::takeHold(const std::string& name)
{
    isHeldNow_ = true;
    if (held_ == name) return;
    letGo();
    held_ = name;
    session_.beginGroup();
}

void ParameterPanel::letGo()
{
    if (held_.empty()) return;
    const std::string name = std::exchange(held_, {});
    const std::optional<ParameterValue> typed = std::exchange(typed_, std::nullopt);
    if (typed) set(name, *typed);
    session_.endGroup();
}

}  // namespace Tesseret::Viewer
