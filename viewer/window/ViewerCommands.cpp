/// What the window's commands do.

#include <algorithm>
#include <cmath>
#include <utility>

#include <GLFW/glfw3.h>
#include <imgui/imgui.h>

#include "viewer/model/MatteShapes.h"
#include "viewer/window/Viewer.h"

namespace Tesseret::Viewer {

namespace {

/// The files of a picture that is opened in the window are its own.
Render::RenderSettings settingsFor(const std::filesystem::path& file,
                                   const Render::RenderSettings& given)
{
    Render::RenderSettings settings;
    settings.source = file;
    settings.depth = given.depth;
    settings.threads = given.threads;
    settings.plugin = given.plugin;
    settings.hostLike = given.hostLike;
    settings.context = given.context;
    settings.everyArea = given.everyArea;
    settings.cropsAreas = given.cropsAreas;
    settings.matteGrow = given.matteGrow;
    return settings;
}

/// A proposed name beside the source.
std::filesystem::path besideSource(const ViewSession& session, const char* before)
{
    const std::filesystem::path& source = session.inputs().source().file;
    return source.parent_path() / (before + source.filename().string());
}

}  // namespace

void Viewer::followKeys()
{
    if (dialog_.isAsking() || question_.isAsking()) return;
    // In the frame after a text was confirmed the library still wants input for it.
    const bool isTyping = ImGui::GetIO().WantTextInput && ImGui::IsAnyItemActive();
    for (const KeyEvent& key : window_.keys()) {
        if (key.key == GLFW_KEY_ESCAPE) showsKeys_ = false;
        if (const auto command = userCommandFor(key, isTyping)) {
            perform(*command);
        } else if (work_ && !isTyping) {
            if (const auto tool = toolFor(key, isTyping)) work_->picture.tools().choose(*tool);
            const bool isEnter = key.key == GLFW_KEY_ENTER || key.key == GLFW_KEY_KP_ENTER;
            if (isEnter) work_->picture.finishDrawing();
            if (key.key == GLFW_KEY_ESCAPE) work_->picture.cancelDrawing();
        }
    }
}

void Viewer::followDrops()
{
    for (const std::string& file : window_.takeDrops()) {
        log_.attempt([&] { openUnlessUnsaved(file); });
    }
}

void Viewer::perform(UserCommand command)
{
    log_.attempt([&] {
        switch (command) {
            case UserCommand::OpenPicture:
                return askPicture();
            case UserCommand::Quit:
                return window_.close();
            case UserCommand::ShowKeys:
                showsKeys_ = !showsKeys_;
                return;
            default:
                if (work_) performOnPicture(command);
        }
    });
}

void Viewer::performOnPicture(UserCommand command)
{
    ViewSession& session = *work_->session;
    View& view = work_->picture.view();
    switch (command) {
        case UserCommand::SaveResult:
            return saveResult(/*asks=*/work_->output.empty());
        case UserCommand::SaveResultAs:
            return saveResult(/*asks=*/true);
        case UserCommand::SaveParameters:
            return askParameters(/*saves=*/true);
        case UserCommand::LoadParameters:
            return askParameters(/*saves=*/false);
        case UserCommand::CopyCommandLine:
            return copyCommandLine();
        case UserCommand::Undo:
        case UserCommand::Redo:
            if (work_->picture.isDrawing()) return work_->picture.cancelDrawing();
            return command == UserCommand::Undo ? session.undo() : session.redo();
        case UserCommand::NextSeed:
            return session.nextSeed();
        case UserCommand::ChooseSettings:
            return session.startChoosing(Fill::Effort::Normal);
        case UserCommand::ChooseThoroughly:
            return session.startChoosing(Fill::Effort::Best);
        case UserCommand::StopChoosing:
            if (work_->picture.isDrawing()) return work_->picture.cancelDrawing();
            return session.search().stop();
        case UserCommand::Fit:
            return view.fit();
        case UserCommand::ActualSize:
            return view.showActualSize();
        case UserCommand::ShowHole:
            work_->picture.showHole();
            return;
        case UserCommand::Play:
            if (session.frames().size() > 1) work_->playback.toggle(Playback::Clock::now());
            return;
        case UserCommand::PreviousFrame:
            return work_->step(-1);
        case UserCommand::NextFrame:
            return work_->step(1);
        default:
            return performOnMatte(command);
    }
}

void Viewer::performOnMatte(UserCommand command)
{
    ViewSession& session = *work_->session;
    ToolBox& tools = work_->picture.tools();
    switch (command) {
        case UserCommand::OpenMatte:
            return askMatte();
        case UserCommand::SaveMatte:
            return saveMatte(/*asks=*/!work_->hasMatteName);
        case UserCommand::SaveMatteAs:
            return saveMatte(/*asks=*/true);
        case UserCommand::GrowMatte:
            return session.paint(
                [&](MattePaint& paint) { growMatte(paint, double(tools.step())); });
        case UserCommand::ShrinkMatte:
            return session.paint(
                [&](MattePaint& paint) { shrinkMatte(paint, double(tools.step())); });
        case UserCommand::ClearMatte:
            return session.paint([](MattePaint& paint) { clearMatte(paint); });
        case UserCommand::ShowMatte:
            return tools.toggleMatte();
        case UserCommand::SmallerBrush:
            return resizeBrush(1.0 / 1.15);
        case UserCommand::LargerBrush:
            return resizeBrush(1.15);
        default:
            return;
    }
}

void Viewer::resizeBrush(double factor)
{
    double& size = work_->picture.tools().brush().size;
    const double next = std::round(size * factor);
    size = std::clamp(next == size ? size + (factor > 1.0 ? 1.0 : -1.0) : next, Brush::kMinSize,
                      Brush::kMaxSize);
}

void Viewer::askPicture()
{
    std::filesystem::path folder;
    if (work_) folder = work_->session->inputs().source().file.parent_path() / "";
    dialog_.ask("Open the picture", folder,
                [this](const std::filesystem::path& file) { openUnlessUnsaved(file); });
}

void Viewer::openUnlessUnsaved(const std::filesystem::path& file)
{
    PictureCache(settingsFor(file, settings_)).read(0);  // before the question, whether it can be
    afterMatteIsSafe("Save the painted matte before another picture is opened?",
                     [this, file] { openPicture(file); });
}

/// At once where nothing would be lost.
void Viewer::afterMatteIsSafe(const std::string& question, std::function<void()> then)
{
    if (!work_ || !work_->session->hasUnsavedMatte()) return then();
    question_.ask(
        question, [this, then] { saveMatte(!work_->hasMatteName, then); }, then);
}

/// Has been read once.
void Viewer::openPicture(const std::filesystem::path& file)
{
    const Render::RenderSettings settings = settingsFor(file, settings_);
    wanted_.clear();
    work_.reset();  // one session at a time has the plug-in
    show(std::make_unique<ViewSession>(settings), {});
}

void Viewer::show(std::unique_ptr<ViewSession> session, const std::filesystem::path& output)
{
    work_ = std::make_unique<Workspace>(std::move(session), log_);
    work_->output = output;
    work_->session->worker().setOnDone(&Window::wake);
    work_->session->search().setOnChange(&Window::wake);
    window_.setTitle(work_->session->inputs().source().file.filename().string() + " - " +
                     work_->session->effect().label);
    pendingFrames_ = 3;
}

void Viewer::askMatte()
{
    const auto open = [this](const std::filesystem::path& file) {
        work_->session->loadMatte(file);
        work_->picture.showHole();
        note("Opened " + file.string());
    };
    dialog_.ask("Open the matte", besideSource(*work_->session, "").parent_path() / "",
                [this, open](const std::filesystem::path& file) {
                    Files::readInfo(file);
                    afterMatteIsSafe("Save the painted matte before another one takes its place?",
                                     [open, file] { open(file); });
                });
}

/// `then` once it is saved.
void Viewer::saveMatte(bool asks, std::function<void()> then)
{
    const auto save = [this, then](const std::filesystem::path& file) {
        work_->session->saveMatte(file);
        work_->hasMatteName = true;
        note("Saved " + file.string());
        if (then) then();
    };
    if (!asks) return save(work_->session->matteFile());
    dialog_.ask("Save the matte as", work_->session->matteFile(), save);
}

void Viewer::saveResult(bool asks)
{
    const ViewSession& session = *work_->session;
    if (!asks) {
        const Render::JobInputs& inputs = session.inputs();
        const bool isPattern = inputs.isSequence() && work_->output == settings_.output;
        wanted_ = isPattern ? inputs.outputFile(session.frame()) : work_->output;
        return;
    }
    const std::filesystem::path proposed =
        work_->output.empty() ? besideSource(session, "filled-") : work_->output;
    dialog_.ask("Save the result as", proposed, [this](const std::filesystem::path& file) {
        work_->session->checkResultFile(file);
        wanted_ = file;
        if (work_->output.empty() && !work_->session->inputs().isSequence()) work_->output = file;
    });
}

void Viewer::askParameters(bool saves)
{
    const std::string question = saves ? "Save the parameters as" : "Load the parameters of";
    dialog_.ask(question, parameters_, [this, saves](const std::filesystem::path& file) {
        if (saves) {
            work_->session->saveParameters(file);
        } else {
            work_->session->loadParameters(file);
        }
        parameters_ = file;
        note((saves ? "Saved " : "Loaded ") + file.string());
    });
}

void Viewer::copyCommandLine()
{
    const std::string text = work_->session->commandText();
    window_.copyToClipboard(text);
    note("Copied: " + text);
    if (!work_->session->needsMatteFile()) return;
    note("It needs the matte: save it as " + work_->session->matteFile().string() + " (Ctrl+M)");
}

}  // namespace Tesseret::Viewer
