#include "viewer/window/ParameterWidget.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>

#include <imgui/imgui.h>
#include <imgui/imgui_stdlib.h>

#include "effect/ParameterNames.h"
#include "ofx/ofxParam.h"

namespace Tesseret::Viewer {

using Host::ParameterDescription;
using Host::ParameterValue;

namespace {

constexpr double kNarrow = 10.0;
constexpr double kWide = 20.0;        ///< the ends' ratio from which a slider is logarithmic
constexpr float kFieldShare = 0.36f;  ///< of a number's width, beside its slider

template <typename Number>
constexpr ImGuiDataType kDataType =
    std::is_same_v<Number, int> ? ImGuiDataType_S32 : ImGuiDataType_Double;

template <typename Number>
struct Span {
    Number lowest, highest;
};

/// The limits of a dimension; those of the type where the plug-in wrote none.
template <typename Number>
Span<Number> spanOf(const std::vector<double>& min, const std::vector<double>& max, std::size_t i)
{
    constexpr double kMin = double(std::numeric_limits<Number>::lowest());
    constexpr double kMax = double(std::numeric_limits<Number>::max());
    const double lowest = i < min.size() ? min[i] : kMin;
    const double highest = i < max.size() ? max[i] : kMax;
    return {static_cast<Number>(std::clamp(lowest, kMin, kMax)),
            static_cast<Number>(std::clamp(highest, kMin, kMax))};
}

/// A slider's range must be small enough to distinguish values.
template <typename Number>
bool canSlide(const Span<Number>& span)
{
    return double(span.highest) - double(span.lowest) <= 1e7 && span.lowest < span.highest;
}

/// The range of a slider, with room where hands need more than the plug-in describes.
template <typename Number>
Span<Number> sliderSpan(const ParameterDescription& parameter)
{
    constexpr Number kMostSamples = 2000;
    auto span = spanOf<Number>(parameter.displayMin, parameter.displayMax, 0);
    if (parameter.name == Names::kNumSamples) span.highest = std::max(span.highest, kMostSamples);
    return span;
}

template <typename Number>
ImGuiSliderFlags sliderFlags(const Span<Number>& span)
{
    const bool isWide =
        span.lowest >= 0 && double(span.highest) >= kWide * std::max(1.0, double(span.lowest));
    return ImGuiSliderFlags_NoInput | ImGuiSliderFlags_NoRoundToFormat |
           (isWide ? ImGuiSliderFlags_Logarithmic : 0);
}

/// The described number of digits, and at least enough to show a drag in a narrow range.
std::string formatOf(const ParameterDescription& parameter, double displaySpan)
{
    const int lowest = displaySpan <= kNarrow ? 4 : 0;
    return "%." + std::to_string(std::clamp(parameter.digits, lowest, 10)) + "f";
}

/// Change for one unit of pointer movement.
template <typename Number>
float dragSpeed(const ParameterDescription& parameter, const Span<Number>& display)
{
    if (canSlide(display)) return float(double(display.highest) - double(display.lowest)) / 400.0f;
    return float(std::max(parameter.increment, 1e-3));
}

template <typename Number>
bool drawField(const ParameterDescription& parameter, std::size_t i, Number& number, float width)
{
    const auto whole = spanOf<Number>(parameter.min, parameter.max, i);
    const auto display = spanOf<Number>(parameter.displayMin, parameter.displayMax, i);
    const std::string format =
        std::is_same_v<Number, int>
            ? "%d"
            : formatOf(parameter, double(display.highest) - double(display.lowest));
    ImGui::PushID(static_cast<int>(i));
    ImGui::SetNextItemWidth(width);
    const bool changed =
        ImGui::DragScalar("##field", kDataType<Number>, &number, dragSpeed(parameter, display),
                          nullptr, nullptr, format.c_str(), ImGuiSliderFlags_NoRoundToFormat);
    ImGui::PopID();
    if (changed) number = std::clamp(number, whole.lowest, whole.highest);
    return changed;
}

template <typename Number>
bool drawNumber(const ParameterDescription& parameter, Number& number, float width)
{
    const auto display = sliderSpan<Number>(parameter);
    if (!canSlide(display)) return drawField(parameter, 0, number, width);
    const float gap = ImGui::GetStyle().ItemInnerSpacing.x;
    const float field = std::floor(width * kFieldShare);
    ImGui::SetNextItemWidth(width - field - gap);
    Number slid = std::clamp(number, display.lowest, display.highest);
    // The text is not shown; its digits tell where a logarithmic scale from 0 begins: at 1.
    ImGui::PushStyleColor(ImGuiCol_Text, {0.0f, 0.0f, 0.0f, 0.0f});
    bool changed =
        ImGui::SliderScalar("##slider", kDataType<Number>, &slid, &display.lowest, &display.highest,
                            std::is_same_v<Number, int> ? "%d" : "%.0f", sliderFlags(display));
    ImGui::PopStyleColor();
    if (changed) number = slid;
    ImGui::SameLine(0.0f, gap);
    if (drawField(parameter, 0, number, field)) changed = true;
    return changed;
}

template <typename Number>
bool drawNumbers(const ParameterDescription& parameter, std::vector<Number>& numbers, float width)
{
    const float gap = ImGui::GetStyle().ItemInnerSpacing.x;
    const float count = float(numbers.size());
    const float field = std::floor((width - gap * (count - 1.0f)) / count);
    bool changed = false;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (i > 0) ImGui::SameLine(0.0f, gap);
        if (drawField(parameter, i, numbers[i], field)) changed = true;
    }
    return changed;
}

bool drawColour(std::vector<double>& numbers, float width)
{
    std::array<float, 4> colour{0.0f, 0.0f, 0.0f, 1.0f};
    const std::size_t count = std::min(numbers.size(), colour.size());
    for (std::size_t i = 0; i < count; ++i) colour[i] = float(numbers[i]);
    ImGui::SetNextItemWidth(width);
    constexpr int kFlags = ImGuiColorEditFlags_Float | ImGuiColorEditFlags_HDR;
    const bool changed = count == 4 ? ImGui::ColorEdit4("##colour", colour.data(), kFlags)
                                    : ImGui::ColorEdit3("##colour", colour.data(), kFlags);
    for (std::size_t i = 0; changed && i < count; ++i) numbers[i] = double(colour[i]);
    return changed;
}

bool drawChoice(const ParameterDescription& parameter, int& choice, float width)
{
    const auto count = static_cast<int>(parameter.options.size());
    const bool isKnown = choice >= 0 && choice < count;
    const char* const shown = isKnown ? parameter.options[std::size_t(choice)].c_str() : "";
    bool changed = false;
    ImGui::SetNextItemWidth(width);
    if (!ImGui::BeginCombo("##choice", shown)) return false;
    for (int i = 0; i < count; ++i) {
        ImGui::PushID(i);
        if (ImGui::Selectable(parameter.options[std::size_t(i)].c_str(), i == choice)) {
            changed = i != choice;
            choice = i;
        }
        ImGui::PopID();
    }
    ImGui::EndCombo();
    return changed;
}

bool drawSwitch(int& value)
{
    bool isOn = value != 0;
    const bool changed = ImGui::Checkbox("##switch", &isOn);
    value = isOn ? 1 : 0;
    return changed;
}

bool drawText(const ParameterDescription& parameter, std::string& text, float width)
{
    ImGui::SetNextItemWidth(width);
    if (parameter.stringMode == kOfxParamStringIsMultiLine) {
        return ImGui::InputTextMultiline("##text", &text, {width, 4.0f * ImGui::GetFrameHeight()});
    }
    return ImGui::InputText("##text", &text);
}

bool drawWhole(const ParameterDescription& parameter, int& value, float width)
{
    if (parameter.type == kOfxParamTypeBoolean) return drawSwitch(value);
    if (parameter.type == kOfxParamTypeChoice) return drawChoice(parameter, value, width);
    return drawNumber(parameter, value, width);
}

bool isColour(const ParameterDescription& parameter)
{
    return parameter.type == kOfxParamTypeRGB || parameter.type == kOfxParamTypeRGBA;
}

}  // namespace

bool drawWholeField(const ParameterDescription& parameter, int& value, float width)
{
    return drawField(parameter, 0, value, width);
}

bool drawParameter(const ParameterDescription& parameter, ParameterValue& value, float width)
{
    if (parameter.isButton()) {
        const std::string& label = parameter.label.empty() ? parameter.name : parameter.label;
        return ImGui::Button(label.c_str(), {width, 0.0f});
    }
    if (auto* const whole = std::get_if<int>(&value)) return drawWhole(parameter, *whole, width);
    if (auto* const number = std::get_if<double>(&value)) {
        return drawNumber(parameter, *number, width);
    }
    if (auto* const text = std::get_if<std::string>(&value)) {
        return drawText(parameter, *text, width);
    }
    if (auto* const wholes = std::get_if<std::vector<int>>(&value)) {
        return drawNumbers(parameter, *wholes, width);
    }
    if (auto* const numbers = std::get_if<std::vector<double>>(&value)) {
        return isColour(parameter) ? drawColour(*numbers, width)
                                   : drawNumbers(parameter, *numbers, width);
    }
    return false;
}

}  // namespace Tesseret::Viewer
