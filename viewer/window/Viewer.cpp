#include "viewer/window/Viewer.h"

#include <algorithm>
#include <utility>

#include <imgui/imgui.h>

#include "viewer/window/Gl.h"
#include "viewer/window/Toolbar.h"

namespace Tesseret::Viewer {

namespace {

// Screen units.
constexpr float kSideWidth = 440.0f;
constexpr float kBottomHeight = 132.0f;
constexpr float kLayersHeight = 46.0f;

// Seconds until the next frame without input.
constexpr double kSoon = 0.01, kWhileRendering = 0.1, kWhileTyping = 0.25, kWhileIdle = 10.0;
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

std::string titleOf(ViewSession& session)
{
    return session.inputs().source().file.filename().string() + " - " + session.effect().label;
}

}  // namespace

Viewer::Viewer(std::unique_ptr<ViewSession> session, ViewerFiles files, WindowSize size)
    : window_(titleOf(*session), size),
      session_(std::move(session)),
      files_(std::move(files)),
      picture_(*session_),
      panel_(*session_, log_),
      status_(*session_, log_),
      scheduler_(*session_)
{
    session_->worker().setOnDone(&Window::wake);
}

void Viewer::run()
{
    while (!window_.isClosing()) {
        window_.wait(waitTime());
        frame();
    }
}

double Viewer::waitTime() const
{
    if (pendingFrames_ > 0) return kSoon;
    if (session_->worker().state().isRendering) return kWhileRendering;
    return ImGui::GetIO().WantTextInput ? kWhileTyping : kWhileIdle;
}

void Viewer::frame()
{
    window_.beginFrame();
    pendingFrames_ = window_.hadInput() ? kSettlingFrames : std::max(0, pendingFrames_ - 1);
    layOut();
    followKeys();
    picture_.followPointer();
    drawInterface();
    updateLog();
    const bool isDragging = picture_.isEditing() || panel_.isDragging();
    const bool wantsMaps = !mapName(picture_.layers().layer()).empty();
    log_.attempt([&] {
        scheduler_.update(isDragging, wantsMaps, RenderScheduler::Clock::now());
        writeWanted();
    });
    const WindowSize size = window_.size();
    picture_.draw(size.height, window_.density());
    window_.endFrame();
}

void Viewer::layOut()
{
    const WindowSize size = window_.size();
    const double top = double(ImGui::GetFrameHeight()) + double(kLayersHeight);
    picture_.view().setArea({0.0, top, double(size.width) - double(kSideWidth),
                             double(size.height) - top - double(kBottomHeight)});
}

void Viewer::drawInterface()
{
    const float menuHeight = ImGui::GetFrameHeight();
    std::optional<UserCommand> command;
    if (ImGui::BeginMainMenuBar()) {
        command = drawMenus(*session_);
        ImGui::EndMainMenuBar();
    }
    const ScreenArea& area = picture_.view().area();
    beginPart("layers", {0.0f, menuHeight}, {float(area.width), kLayersHeight});
    drawLayerButtons(picture_.layers());
    ImGui::End();
    drawSide(menuHeight);
    drawBottom(float(area.y + area.height));
    dialog_.draw();
    if (command) perform(*command);
}

void Viewer::drawSide(float top)
{
    const WindowSize size = window_.size();
    beginPart("parameters", {float(size.width) - kSideWidth, top},
              {kSideWidth, float(size.height) - top});
    panel_.draw();
    ImGui::End();
}

void Viewer::drawBottom(float top)
{
    beginPart("status", {0.0f, top}, {float(picture_.view().area().width), kBottomHeight});
    const int frame = status_.draw(picture_.view().scale());
    ImGui::End();
    if (frame != session_->frame()) showFrame(frame);
}

/// Logs the plug-in's messages, and shows the worker's latest result.
void Viewer::updateLog()
{
    for (const std::string& text : session_->takeMessages()) {
        log_.add(MessageLog::Kind::Message, text);
    }
    const auto result = session_->worker().latest();
    if (!result || result->serial == shownSerial_) return;
    shownSerial_ = result->serial;
    pendingFrames_ = kSettlingFrames;
    for (const std::string& text : result->notes) log_.add(MessageLog::Kind::Note, text);
    for (const std::string& text : result->messages) log_.add(MessageLog::Kind::Message, text);
    log_.add(MessageLog::Kind::Error, result->error);
    picture_.update();
}

void Viewer::followKeys()
{
    if (dialog_.isAsking()) return;
    for (const KeyEvent& key : window_.keys()) {
        const auto command = userCommandFor(key, ImGui::GetIO().WantTextInput);
        if (command) perform(*command);
    }
}

void Viewer::perform(UserCommand command)
{
    log_.attempt([&] {
        switch (command) {
            case UserCommand::SaveResult:
                return saveResult(/*asks=*/files_.output.empty());
            case UserCommand::SaveResultAs:
                return saveResult(/*asks=*/true);
            case UserCommand::SaveParameters:
                return askParameters(/*saves=*/true);
            case UserCommand::LoadParameters:
                return askParameters(/*saves=*/false);
            case UserCommand::CopyCommandLine:
                return copyCommandLine();
            case UserCommand::Quit:
                return window_.close();
            case UserCommand::Undo:
                return session_->undo();
            case UserCommand::Redo:
                return session_->redo();
            case UserCommand::Fit:
                return picture_.view().fit();
            case UserCommand::PreviousFrame:
                return step(-1);
            case UserCommand::NextFrame:
                return step(1);
        }
    });
}

void Viewer::saveResult(bool asks)
{
    if (!asks) {
        wanted_ = session_->inputs().isSequence() ? session_->inputs().outputFile(session_->frame())
                                                  : files_.output;
        return;
    }
    dialog_.ask("Save the result as", files_.output,
                [this](const std::filesystem::path& file) { wanted_ = file; });
}

void Viewer::askParameters(bool saves)
{
    const std::string question = saves ? "Save the parameters as" : "Load the parameters of";
    dialog_.ask(question, files_.parameters, [this, saves](const std::filesystem::path& file) {
        log_.attempt([&] {
            if (saves) {
                session_->saveParameters(file);
            } else {
                session_->loadParameters(file);
            }
            files_.parameters = file;
            log_.add(MessageLog::Kind::Note, (saves ? "Saved " : "Loaded ") + file.string());
        });
    });
}

void Viewer::copyCommandLine()
{
    const std::string text = session_->commandText();
    window_.copyToClipboard(text);
    log_.add(MessageLog::Kind::Note, "Copied: " + text);
}

/// Saves once the render is complete, so that the window never blocks.
void Viewer::writeWanted()
{
    if (wanted_.empty()) return;
    if (session_->hasFullResult()) {
        const std::filesystem::path file = std::exchange(wanted_, {});
        session_->saveResult(file);
        log_.add(MessageLog::Kind::Note, "Saved " + file.string());
    } else if (scheduler_.isSettled()) {
        const bool hasFailed = !session_->worker().latest()->error.empty();
        if (hasFailed) {
            log_.add(MessageLog::Kind::Error, "Nothing saved to " + wanted_.string());
            wanted_.clear();
        } else {
            scheduler_.renew();
            pendingFrames_ = kSettlingFrames;
        }
    }
}

void Viewer::step(int frames)
{
    const std::vector<int>& all = session_->frames();
    const auto place = std::ranges::find(all, session_->frame()) - all.begin();
    const auto last = static_cast<std::ptrdiff_t>(all.size()) - 1;
    showFrame(all[static_cast<std::size_t>(std::clamp(place + frames, std::ptrdiff_t{0}, last))]);
}

void Viewer::showFrame(int frame)
{
    log_.attempt([&] {
        session_->setFrame(frame);
        picture_.update();
    });
}

}  // namespace Tesseret::Viewer
