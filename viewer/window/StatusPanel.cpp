#include "viewer/window/StatusPanel.h"

#include <algorithm>
#include <string>

#include <imgui/imgui.h>

#include "fill/ChoiceText.h"

namespace Tesseret::Viewer {

namespace {

constexpr float kProgressWidth = 240.0f;  ///< screen units
constexpr const char* kWidestZoom = "00000 %";
const ImVec4 kErrorColour{0.95f, 0.42f, 0.36f, 1.0f};
const ImVec4 kMessageColour{0.96f, 0.80f, 0.45f, 1.0f};
const ImVec4 kNoteColour{0.62f, 0.76f, 0.90f, 1.0f};

ImVec4 textColour()
{
    return ImGui::GetStyleColorVec4(ImGuiCol_Text);
}

void drawLine(const std::string& text, const ImVec4& colour)
{
    ImGui::PushStyleColor(ImGuiCol_Text, colour);
    ImGui::TextUnformatted(text.c_str());
    ImGui::PopStyleColor();
}

std::string stageText(const WorkerState& state)
{
    std::string text = state.stage.empty() ? "Rendering" : state.stage;
    if (state.areaCount > 1) {
        text +=
            ", area " + std::to_string(state.area + 1) + " of " + std::to_string(state.areaCount);
    }
    return text;
}

/// "Choosing settings: area 1 of 2, trial 12 of 40, best 0.93", or as much of it as fits.
std::string searchText(const SearchState& search, float room)
{
    const Fill::SearchProgress& progress = search.progress;
    if (search.isStopping) return "Stopping...";
    if (progress.done == 0) return "Choosing settings...";
    const std::string trial =
        "trial " + std::to_string(progress.done) + " of " + std::to_string(progress.trials);
    const std::string best = ", best " + Fill::scoreText(progress.best);
    const std::string area = progress.areas > 1 ? "area " + std::to_string(progress.area + 1) +
                                                      " of " + std::to_string(progress.areas) + ", "
                                                : "";
    const std::string less = trial + best, most = area + less;
    const std::string all = "Choosing settings: " + most;
    for (const std::string& text : {all, most, less, trial}) {
        if (ImGui::CalcTextSize(text.c_str()).x <= room) return text;
    }
    return "";
}

}  // namespace

/// The search for settings goes before a render beside it.
void StatusPanel::drawSearch(const SearchState& search) const
{
    const Fill::SearchProgress& progress = search.progress;
    const double share =
        progress.trials > 0 ? double(progress.done) / double(progress.trials) : 0.0;
    const float width = std::min(kProgressWidth, ImGui::GetContentRegionAvail().x / 3.0f);
    ImGui::ProgressBar(float((double(progress.area) + share) / double(progress.areas)),
                       {width, 0.0f}, "");
    ImGui::SameLine();
    const float room = ImGui::GetContentRegionAvail().x - ImGui::CalcTextSize(kWidestZoom).x;
    ImGui::TextUnformatted(searchText(search, room).c_str());
}

StatusPanel::Choice StatusPanel::draw(double zoom, bool isPlaying)
{
    const Choice choice = drawFrames(isPlaying);
    drawProgress();
    ImGui::SameLine(ImGui::GetContentRegionMax().x - ImGui::CalcTextSize(kWidestZoom).x);
    ImGui::TextDisabled("%5.0f %%", zoom * 100.0);
    drawMessages();
    return choice;
}

StatusPanel::Choice StatusPanel::drawFrames(bool isPlaying) const
{
    const std::vector<int>& frames = session_.frames();
    if (frames.size() < 2) return {session_.frame()};
    Choice choice;
    const float width = ImGui::CalcTextSize("Pause").x + 2.0f * ImGui::GetStyle().FramePadding.x;
    choice.togglesPlay = ImGui::Button(isPlaying ? "Pause###play" : "Play###play", {width, 0.0f});
    if (ImGui::IsItemHovered()) ImGui::SetTooltip("Plays the sequence (Space)");
    const auto place = std::ranges::find(frames, session_.frame()) - frames.begin();
    auto chosen = static_cast<int>(place);
    ImGui::SameLine();
    ImGui::SetNextItemWidth(-1.0f);
    ImGui::SliderInt("##frame", &chosen, 0, int(frames.size()) - 1,
                     ("Frame " + std::to_string(session_.frame())).c_str(),
                     ImGuiSliderFlags_NoInput);
    choice.frame = frames[std::size_t(std::clamp(chosen, 0, int(frames.size()) - 1))];
    return choice;
}

void StatusPanel::drawProgress() const
{
    const WorkerState state = session_.worker().state();
    ImGui::AlignTextToFramePadding();
    const SearchState search = session_.search().state();
    if (search.isRunning) return drawSearch(search);
    if (state.isRendering) {
        const std::string text = stageText(state);
        const float width = std::min(kProgressWidth, ImGui::GetContentRegionAvail().x / 3.0f);
        ImGui::ProgressBar(float(state.fraction), {width, 0.0f}, "");
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

void StatusPanel::drawRenderNotes() const
{
    const auto result = session_.worker().latest();
    if (!result) return;
    if (!result->error.empty()) drawLine(result->error, kErrorColour);
    for (const std::string& text : result->messages) drawLine(text, kMessageColour);
    for (const std::string& text : result->notes) drawLine(text, kNoteColour);
}

/// What happened, and under it what the last render had to say; that goes with the render.
void StatusPanel::drawMessages()
{
    ImGui::BeginChild("messages");
    ImGui::PushTextWrapPos(0.0f);
    for (const MessageLog::Line& line : log_.lines()) {
        drawLine(line.text, line.kind == MessageLog::Kind::Error     ? kErrorColour
                            : line.kind == MessageLog::Kind::Message ? kMessageColour
                                                                     : textColour());
    }
    drawRenderNotes();
    const SearchState search = session_.search().state();
    if (search.isRunning && !search.progress.caption.empty()) {
        drawLine("Best so far: " + search.progress.caption, kNoteColour);
    }
    ImGui::PopTextWrapPos();
    const auto result = session_.worker().latest();
    const std::uint64_t render = result ? result->serial : 0;
    const bool isNew = shown_ != log_.count() || shownRender_ != render;
    if (isNew || search.isRunning) ImGui::SetScrollHereY(1.0f);
    shown_ = log_.count();
    shownRender_ = render;
    ImGui::EndChild();
}

}  // namespace Tesseret::Viewer
