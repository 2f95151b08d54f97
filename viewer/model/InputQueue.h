#pragma once

/// Input events, split into frames. A frame sees every key and button either down or up, so a press
/// and its release that arrive together are split over two frames; otherwise a slow frame would
/// miss a quick click.

#include <deque>
#include <set>
#include <variant>
#include <vector>

namespace Tesseret::Viewer {

struct MotionEvent {
    double x = 0.0, y = 0.0;  ///< screen units, y downwards
};
struct ButtonEvent {
    int button = 0, action = 0, modifiers = 0;  ///< as GLFW counts them
};
struct WheelEvent {
    double x = 0.0, y = 0.0;
};
struct KeyEvent {
    int key = 0, scancode = 0, action = 0, modifiers = 0;
};
struct TextEvent {
    unsigned int codepoint = 0;
};
using InputEvent = std::variant<MotionEvent, ButtonEvent, WheelEvent, KeyEvent, TextEvent>;

class InputQueue {
public:
    void push(const InputEvent& event) { events_.push_back(event); }
    bool empty() const { return events_.empty(); }

    /// The next events that one frame can show, in order: each key changes once, and a button only
    /// where the pointer is at the frame's end, after all keys.
    std::vector<InputEvent> takeFrame();

private:
    std::deque<InputEvent> events_;
};

}  // namespace Tesseret::Viewer
