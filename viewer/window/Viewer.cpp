#include "viewer/window/Viewer.h"

#include <algorithm>
#include <utility>

#include <imgui/imgui.h>

#include "viewer/window/Gl.h"
#include "viewer/window/Theme.h"
#include "viewer/window/Toolbar.h"

namespace Tesseret::Viewer {

namespace {

// Screen units, from the smallest window to a large one.
constexpr float kSideShare = 0.345f, kLeastSide = 232.0f, kMostSide = 440.0f;
constexpr float kLeastToolbar = 44.0f, kLeastHint = 27.0f;
constexpr float kBottomShare = 0.165f, kLeastBottom = 74.0f, kMostBottom = 132.0f;

// Seconds until the next frame without input.
constexpr double kSoon = 0.01, kWhilePlaying = 0.01, kWhileRendering = 0.1, kWhileTyping = 0.25,
                 kWhileIdle = 10.0;
constexpr int kSettlingFrames = 3;

constexpr int kPlainWindow = ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove |
                             ImGuiWindowFlags_NoSavedSettings |
                             ImGuiWindowFlags_NoBringToFrontOnFocus;

/// Begins a part of the window with fixed position and size.
void beginPart(const char* name, ImVec2 place, ImVec2 size)
{
    ImGui::SetNextWindowPos(place);
    ImGui::SetNextWindowSize(size);
    ImGui::Begin(name, nullptr, kPlainWindow);
}

/// How high the current part would have to be for what has been drawn.
float neededHeight()
{
    return ImGui::GetCursorPosY() - ImGui::GetStyle().ItemSpacing.y +
           ImGui::GetStyle().WindowPadding.y;
}

float sideWidth(const WindowSize& size)
{
    return std::clamp(kSideShare * float(size.width), kLeastSide, kMostSide);
}

/// With a row more for the frames of a sequence.
float bottomHeight(const WindowSize& size, const ViewSession& session)
{
    const float row = session.frames().size() > 1 ? ImGui::GetFrameHeightWithSpacing() : 0.0f;
    return row + std::clamp(kBottomShare * float(size.height), kLeastBottom, kMostBottom);
}

}  // namespace

Viewer::Viewer(std::unique_ptr<ViewSession> session, const Render::RenderSettings& settings,
               WindowSize size, bool chooses)
    : window_("Tesseret", size), settings_(settings), parameters_(settings.parameterFile)
{
    if (!session) return;
    show(std::move(session), settings.output);
    if (!chooses || !work_->session->chooseObstacle().empty()) return;
    work_->session->startChoosing(Fill::Effort::Normal);  // as `fill` does by itself
}

void Viewer::run()
{
    while (!window_.isClosing()) {
        window_.wait(waitTime());
        frame();
        if (window_.isClosing()) followClosing();
    }
}

double Viewer::waitTime() const
{
    if (pendingFrames_ > 0) return kSoon;
    if (work_ && work_->playback.isPlaying()) return kWhilePlaying;
    if (work_ && work_->session->worker().state().isRendering) return kWhileRendering;
    if (work_ && work_->session->search().isBusy()) return kWhileRendering;
    return ImGui::GetIO().WantTextInput ? kWhileTyping : kWhileIdle;
}

void Viewer::frame()
{
    window_.beginFrame();
    pendingFrames_ = window_.hadInput() ? kSettlingFrames : std::max(0, pendingFrames_ - 1);
    layOut();
    followKeys();
    followDrops();
    if (work_) work_->picture.followPointer(window_.motions());
    drawInterface();
    if (work_) {
        updateLog();
        log_.attempt([&] {
            followSearch();
            work_->followRegion();
            work_->schedule(!wanted_.empty());
            writeWanted();
            play();
        });
        work_->picture.draw(window_.size().height, window_.density());
    } else {
        glClearColor(0.085f, 0.085f, 0.085f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    window_.endFrame();
}

void Viewer::layOut()
{
    if (!work_) return;
    const WindowSize size = window_.size();
    const float top = ImGui::GetFrameHeight() + toolbarHeight_ + hintHeight_;
    stripHeight_ = work_->variations.height(float(size.height));
    work_->picture.view().setArea(
        {0.0, double(top), double(float(size.width) - sideWidth(size)),
         double(float(size.height) - top - stripHeight_ - bottomHeight(size, *work_->session))});
}

void Viewer::drawInterface()
{
    std::optional<UserCommand> command;
    if (ImGui::BeginMainMenuBar()) {
        const bool isPlaying = work_ && work_->playback.isPlaying();
        command = drawMenus(work_ ? work_->session.get() : nullptr, isPlaying);
        ImGui::EndMainMenuBar();
    }
    if (work_) {
        drawTop();
        drawSide();
        drawVariations();
        drawBottom();
    } else {
        drawInvitation();
    }
    drawKeys();
    dialog_.draw();
    log_.attempt([&] { question_.draw(); });
    if (command) perform(*command);
}

/// The toolbar and the line of advice, each as high as its contents were before at this width: if
/// they became lower again, the picture would move under the pointer.
void Viewer::drawTop()
{
    const float width = float(window_.size().width);
    if (std::exchange(topWidth_, width) != width) {
        toolbarHeight_ = kLeastToolbar;
        hintHeight_ = kLeastHint;
    }
    float top = ImGui::GetFrameHeight();
    beginPart("tools", {0.0f, top}, {width, toolbarHeight_});
    const auto command =
        drawToolbar(*work_->session, work_->picture.layers(), work_->picture.tools());
    const float tools = neededHeight();
    ImGui::End();
    top += toolbarHeight_;
    ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, {12.0f, 5.0f});
    ImGui::PushStyleColor(ImGuiCol_WindowBg, ImGui::GetStyleColorVec4(ImGuiCol_MenuBarBg));
    beginPart("advice", {0.0f, top}, {width, hintHeight_});
    ImGui::PushTextWrapPos(0.0f);
    ImGui::TextColored(adviceColour(), "%s", nextStep(work_->progress()).c_str());
    ImGui::PopTextWrapPos();
    const float hint = neededHeight();
    ImGui::End();
    ImGui::PopStyleColor();
    ImGui::PopStyleVar();
    if (tools > toolbarHeight_ || hint > hintHeight_) pendingFrames_ = kSettlingFrames;
    toolbarHeight_ = std::max(tools, toolbarHeight_);
    hintHeight_ = std::max(hint, hintHeight_);
    if (command) perform(*command);
}

void Viewer::drawSide()
{
    const WindowSize size = window_.size();
    const float top = float(work_->picture.view().area().y);
    beginPart("parameters", {float(size.width) - sideWidth(size), top},
              {sideWidth(size), float(size.height) - top});
    work_->panel.draw();
    ImGui::End();
}

void Viewer::drawVariations()
{
    if (stripHeight_ == 0.0f) return;
    const ScreenArea& area = work_->picture.view().area();
    ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, {8.0f, 2.0f});
    beginPart("variations", {0.0f, float(area.y + area.height)}, {float(area.width), stripHeight_});
    work_->variations.draw();
    ImGui::End();
    ImGui::PopStyleVar();
}

void Viewer::drawBottom()
{
    const ScreenArea& area = work_->picture.view().area();
    const WindowSize size = window_.size();
    beginPart("status", {0.0f, float(area.y + area.height) + stripHeight_},
              {float(area.width), bottomHeight(size, *work_->session)});
    const StatusPanel::Choice choice =
        work_->status.draw(work_->picture.view().scale(), work_->playback.isPlaying());
    ImGui::End();
    if (choice.togglesPlay) work_->playback.toggle(Playback::Clock::now());
    if (choice.frame == work_->session->frame()) return;
    log_.attempt([&] { work_->showFrame(choice.frame); });
}

/// What an empty window says.
void Viewer::drawInvitation()
{
    const WindowSize size = window_.size();
    const float top = ImGui::GetFrameHeight();
    beginPart("invitation", {0.0f, top}, {float(size.width), float(size.height) - top});
    const auto centred = [](const char* text) {
        ImGui::SetCursorPosX(
            std::max(12.0f, (ImGui::GetWindowWidth() - ImGui::CalcTextSize(text).x) / 2.0f));
    };
    ImGui::SetCursorPosY(ImGui::GetWindowHeight() * 0.36f);
    const std::string advice = nextStep({});
    centred(advice.c_str());
    ImGui::TextColored(adviceColour(), "%s", advice.c_str());
    ImGui::Spacing();
    constexpr const char* kOpen = "   Open picture...   ";
    centred(kOpen);
    if (ImGui::Button(kOpen)) askPicture();
    ImGui::Spacing();
    constexpr const char* kNext = "Then paint over what should go, look at the fill, and save it.";
    centred(kNext);
    ImGui::TextDisabled("%s", kNext);
    ImGui::PushTextWrapPos(0.0f);
    for (const MessageLog::Line& line : log_.lines()) {
        centred(line.text.c_str());
        ImGui::TextUnformatted(line.text.c_str());
    }
    ImGui::PopTextWrapPos();
    ImGui::End();
}

void Viewer::drawKeys()
{
    if (!showsKeys_) return;
    const WindowSize size = window_.size();
    ImGui::SetNextWindowPos(ImGui::GetMainViewport()->GetCenter(), ImGuiCond_Appearing,
                            {0.5f, 0.5f});
    ImGui::SetNextWindowSize(
        {std::min(700.0f, float(size.width) - 40.0f), std::min(640.0f, float(size.height) - 60.0f)},
        ImGuiCond_Appearing);
    if (ImGui::Begin("Mouse and keys", &showsKeys_,
                     ImGuiWindowFlags_NoCollapse | ImGuiWindowFlags_NoSavedSettings)) {
        for (const auto& [keys, effect] : keyRows()) {
            ImGui::TextUnformatted(keys.c_str());
            ImGui::SameLine(130.0f);
            ImGui::PushTextWrapPos(0.0f);
            ImGui::TextUnformatted(effect.c_str());
            ImGui::PopTextWrapPos();
        }
    }
    ImGui::End();
}

/// Logs the plug-in's messages, and shows the worker's latest result.
void Viewer::updateLog()
{
    for (const std::string& text : work_->session->takeMessages()) {
        log_.add(MessageLog::Kind::Message, text);
    }
    if (work_->showLatest()) pendingFrames_ = kSettlingFrames;
}

/// What has been found is not applied in the middle of a drag.
void Viewer::followSearch()
{
    if (work_->picture.isEditing() || work_->picture.isDrawing() || work_->panel.isDragging())
        return;
    if (work_->session->takeChoice()) pendingFrames_ = kSettlingFrames;
}

/// By the system's button, too.
void Viewer::followClosing()
{
    if (!work_ || !work_->session->hasUnsavedMatte() || isLeaving_) return;
    window_.keepOpen();
    pendingFrames_ = kSettlingFrames;
    if (question_.isAsking()) return;
    afterMatteIsSafe("Save the painted matte before the window closes?", [this] {
        isLeaving_ = true;
        window_.close();
    });
}

void Viewer::play()
{
    const bool isComplete =
        work_->picture.layers().layer() == Layer::Source || work_->scheduler.isSettled();
    if (!work_->playback.isDue(isComplete, Playback::Clock::now())) return;
    const bool isLast = work_->session->frame() == work_->session->frames().back();
    if (isLast) {
        work_->showFrame(work_->session->frames().front());
    } else {
        work_->step(1);
    }
    pendingFrames_ = kSettlingFrames;
}

/// Saves once the render is complete, so that the window never blocks.
void Viewer::writeWanted()
{
    if (wanted_.empty()) return;
    if (work_->session->hasFullResult()) {
        const std::filesystem::path file = std::exchange(wanted_, {});
        work_->session->saveResult(file);
        work_->savedSerial = work_->session->worker().latest()->serial;
        note("Saved " + file.string());
        pendingFrames_ = kSettlingFrames;
    } else if (work_->scheduler.isSettled()) {
        if (!work_->session->worker().latest()->error.empty()) {
            log_.add(MessageLog::Kind::Error, "Nothing saved to " + wanted_.string());
            wanted_.clear();
        } else {
            work_->scheduler.renew();
            pendingFrames_ = kSettlingFrames;
        }
    }
}

}  // namespace Tesseret::Viewer
