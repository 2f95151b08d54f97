#pragma once

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "ofx/ofxCore.h"
#include "viewer/model/InputQueue.h"

struct GLFWwindow;

namespace Tesseret::Viewer {

struct WindowSize {
    int width = 1280, height = 800;
};

/// One window of the system with an OpenGL context, which is current while the object lives, and
/// the user interface library set up in it. One at a time.
class Window {
public:
    /// Throws `UsageError` where there is no window system.
    Window(const std::string& title, WindowSize size);
    ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    /// Sleeps until there is input, `wake` is called or the time has passed.
    void wait(double seconds);
    /// Ends the sleep of a window; from any thread.
    static void wake();

    /// Passes input to the user interface and begins its frame; the frame's keys are pressed or
    /// repeated ones. If more input is queued than one frame can take, `wait` returns at once.
    void beginFrame();
    const std::vector<KeyEvent>& keys() const { return keys_; }
    /// Where the pointer has been since the last frame, in order, screen units.
    const std::vector<OfxPointD>& motions() const { return motions_; }
    /// Files dropped on the window since the last call.
    std::vector<std::string> takeDrops() { return std::exchange(drops_, {}); }
    /// Whether the frame has any input.
    bool hadInput() const { return hadInput_; }
    /// Draws the user interface on top and shows the frame.
    void endFrame();

    /// Whether the user has closed the window.
    bool isClosing() const;
    void close();
    /// The user's wish to close it does not count.
    void keepOpen();
    void setTitle(const std::string& title);
    void copyToClipboard(const std::string& text);

    /// In screen units.
    WindowSize size() const;
    /// Pixels for one screen unit, more than 1 on dense displays.
    double density() const;

private:
    friend struct WindowEvents;

    void listen();
    void pass(const InputEvent& event);

    GLFWwindow* window_ = nullptr;
    InputQueue input_;
    double pointerX_ = -1.0, pointerY_ = -1.0;
    std::array<bool, 5> buttons_{};  ///< down, after the frame's events
    std::vector<KeyEvent> keys_;
    std::vector<OfxPointD> motions_;
    std::vector<std::string> drops_;
    bool hadInput_ = false;
};

}  // namespace Tesseret::Viewer
