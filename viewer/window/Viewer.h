#pragma once

#include <filesystem>
#include <memory>

#include "viewer/model/Messages.h"
#include "viewer/model/RenderScheduler.h"
#include "viewer/window/ParameterPanel.h"
#include "viewer/window/PathDialog.h"
#include "viewer/window/PictureArea.h"
#include "viewer/window/StatusPanel.h"
#include "viewer/window/UserCommand.h"
#include "viewer/window/Window.h"

namespace Tesseret::Viewer {

/// Files of a viewer beside those of the session.
struct ViewerFiles {
    std::filesystem::path output;      ///< of the result; empty: asked for
    std::filesystem::path parameters;  ///< proposed for saving and loading; may be empty
};

/// The window with a session's picture and parameters.
class Viewer {
public:
    /// Opens the window. Throws `UsageError` where there is no window system.
    Viewer(std::unique_ptr<ViewSession> session, ViewerFiles files, WindowSize size);

    /// Returns when the user closes the window.
    void run();

private:
    double waitTime() const;
    void frame();
    void layOut();
    void drawInterface();
    void drawSide(float top);
    void drawBottom(float top);
    void updateLog();
    void followKeys();
    void perform(UserCommand command);
    void saveResult(bool asks);
    void askParameters(bool saves);
    void copyCommandLine();
    void writeWanted();
    void step(int frames);
    void showFrame(int frame);

    // The session ends first: its overlay may still need the window's OpenGL context.
    Window window_;
    std::unique_ptr<ViewSession> session_;
    ViewerFiles files_;
    MessageLog log_;
    PictureArea picture_;
    ParameterPanel panel_;
    StatusPanel status_;
    RenderScheduler scheduler_;
    PathDialog dialog_;
    std::filesystem::path wanted_;  ///< where the result goes once it is complete; empty: nowhere
    std::uint64_t shownSerial_ = 0;
    int pendingFrames_ = 3;  ///< frames to draw without delay, until the user interface has settled
};

}  // namespace Tesseret::Viewer
