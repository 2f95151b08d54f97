#include "viewer/window/ParameterPanel.h"

#include <utility>

#include <imgui/imgui.h>

#include "viewer/window/ParameterWidget.h"
#include "viewer/window/Theme.h"

namespace Tesseret::Viewer {

using Host::ParameterDescription;
using Host::ParameterValue;

namespace {

constexpr float kLabelWidth = 158.0f;  ///< screen units

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

void ParameterPanel::drawRow(const ParameterDescription& parameter)
{
    ImGui::PushID(parameter.name.c_str());
    ImGui::BeginDisabled(!parameter.enabled);
    const float gap = ImGui::GetStyle().ItemInnerSpacing.x;
    const float reset = ImGui::GetFrameHeight();
    const float start = ImGui::GetCursorPosX();
    const float width = ImGui::GetContentRegionAvail().x - kLabelWidth - reset - gap;
    if (!parameter.isButton()) {
        ImGui::AlignTextToFramePadding();
        ImGui::TextUnformatted(labelOf(parameter).c_str());
        drawHint(parameter);
        ImGui::SameLine();
    }
    ImGui::SetCursorPosX(start + kLabelWidth);
    drawValue(parameter, width);
    if (!parameter.isButton()) {
        ImGui::SameLine(start + kLabelWidth + width + gap);
        drawReset(parameter);
    }
    ImGui::EndDisabled();
    ImGui::PopID();
}

void ParameterPanel::drawValue(const ParameterDescription& parameter, float width)
{
    const bool isHeld = held_ == parameter.name;
    ParameterValue value;
    if (!parameter.isButton()) value = isHeld && typed_ ? *typed_ : session_.value(parameter.name);
    ImGui::BeginGroup();
    const bool changed = drawParameter(parameter, value, width);
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
