#include "viewer/window/StatusPanel.h"

#include <algorithm>
#include <string>

#include <imgui/imgui.h>

namespace Tesseret::Viewer {

namespace {

constexpr float kProgressWidth = 240.0f;  ///< screen units
const ImVec4 kErrorColour{0.95f, 0.42f, 0.36f, 1.0f};
const ImVec4 kMessageColour{0.96f, 0.80f, 0.45f, 1.0f};

std::string stageText(const WorkerState& state)
{
    std::string text = state.stage.empty() ? "Rendering" : state.stage;
    if (state.areaCount > 1) {
        text +=
            ", area " + std::to_string(state.area + 1) + " of " + std::to_string(state.areaCount);
    }
    return text;
}

}  // namespace

int StatusPanel::draw(double zoom)
{
    const int frame = drawFrames();
    drawProgress();
    ImGui::SameLine(ImGui::GetContentRegionMax().x - ImGui::CalcTextSize("00000 %").x);
    ImGui::TextDisabled("%5.0f %%", zoom * 100.0);
    drawMessages();
    return frame;
}

int StatusPanel::drawFrames() const
{
    const std::vector<int>& frames = session_.frames();
    if (frames.size() < 2) return session_.frame();
    const auto place = std::ranges::find(frames, session_.frame()) - frames.begin();
    auto chosen = static_cast<int>(place);
    ImGui::AlignTextToFramePadding();
    ImGui::TextUnformatted("Frame");
    ImGui::SameLine();
    ImGui::SetNextItemWidth(-1.0f);
    ImGui::SliderInt("##frame", &chosen, 0, int(frames.size()) - 1,
                     std::to_string(session_.frame()).c_str(), ImGuiSliderFlags_NoInput);
    return frames[std::size_t(std::clamp(chosen, 0, int(frames.size()) - 1))];
}

void StatusPanel::drawProgress() const
{
    const WorkerState state = session_.worker().state();
    ImGui::AlignTextToFramePadding();
    if (state.isRendering) {
        const std::string text = stageText(state);
        ImGui::ProgressBar(float(state.fraction), {kProgressWidth, 0.0f}, "");
        ImGui::SameLine();
        ImGui::TextUnformatted(text.c_str());
        return;
    }
    const auto result = session_.worker().latest();
    if (!result) return ImGui::TextDisabled("No render yet");
    if (!result->error.empty()) return ImGui::TextColored(kErrorColour, "The render failed");
    ImGui::TextDisabled("%d x %d pixels in %.2f s", result->picture.width(),
                        result->picture.height(), result->seconds);
}

void StatusPanel::drawMessages()
{
    ImGui::BeginChild("messages");
    ImGui::PushTextWrapPos(0.0f);
    for (const MessageLog::Line& line : log_.lines()) {
        const ImVec4 colour = line.kind == MessageLog::Kind::Error ? kErrorColour
                              : line.kind == MessageLog::Kind::Message
                                  ? kMessageColour
                                  : ImGui::GetStyleColorVec4(ImGuiCol_Text);
        ImGui::PushStyleColor(ImGuiCol_Text, colour);
        ImGui::TextUnformatted(line.text.c_str());
        ImGui::PopStyleColor();
    }
    ImGui::PopTextWrapPos();
    if (shown_ != log_.count()) ImGui::SetScrollHereY(1.0f);
    shown_ = log_.count();
    ImGui::EndChild();
}

}  // namespace Tesseret::Viewer
