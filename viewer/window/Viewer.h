#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "viewer/model/Messages.h"
#include "viewer/window/PathDialog.h"
#include "viewer/window/QuestionDialog.h"
#include "viewer/window/UserCommand.h"
#include "viewer/window/Window.h"
#include "viewer/window/Workspace.h"

namespace Tesseret::Viewer {

/// The window: empty, or with a picture, its fill and the parameters.
class Viewer {
public:
    /// Opens the window with a session of the settings, or empty without one. Throws `UsageError`
    /// where there is no window system.
    /// `chooses`: settings are chosen at once, for the matte of the session.
    Viewer(std::unique_ptr<ViewSession> session, const Render::RenderSettings& settings,
           WindowSize size, bool chooses);

    /// Returns when the user closes the window.
    void run();

private:
    // Parts of a frame.
    double waitTime() const;
    void frame();
    void layOut();
    void drawInterface();
    void drawTop();
    void drawSide();
    void drawBottom();
    void drawInvitation();
    void drawKeys();
    void drawVariations();
    void updateLog();
    void followSearch();
    void followClosing();
    void followKeys();
    void followDrops();
    void play();

    // Commands.
    void perform(UserCommand command);
    void performOnPicture(UserCommand command);
    void performOnMatte(UserCommand command);
    void askPicture();
    void openPicture(const std::filesystem::path& file);
    void openUnlessUnsaved(const std::filesystem::path& file);
    void afterMatteIsSafe(const std::string& question, std::function<void()> then);
    void show(std::unique_ptr<ViewSession> session, const std::filesystem::path& output);
    void askMatte();
    void saveMatte(bool asks, std::function<void()> then = nullptr);
    void saveResult(bool asks);
    void askParameters(bool saves);
    void copyCommandLine();
    void resizeBrush(double factor);
    void writeWanted();
    void note(const std::string& text) { log_.add(MessageLog::Kind::Note, text); }

    // The workspace ends first: it needs the window's OpenGL context.
    Window window_;
    Render::RenderSettings settings_;  ///< as given
    MessageLog log_;
    std::unique_ptr<Workspace> work_;  ///< null while there is no picture
    PathDialog dialog_;
    QuestionDialog question_;
    std::filesystem::path parameters_;  ///< proposed for saving and loading; may be empty
    std::filesystem::path wanted_;  ///< where the result goes once it is complete; empty: nowhere
    float stripHeight_ = 0.0f;      ///< of the fills to pick from, screen units
    float topWidth_ = 0.0f, toolbarHeight_ = 44.0f, hintHeight_ = 27.0f;  ///< screen units
    bool showsKeys_ = false;
    bool isLeaving_ = false;  ///< the user has decided about the matte
    int pendingFrames_ = 3;  ///< frames to draw without delay, until the user interface has settled
};

}  // namespace Tesseret::Viewer
