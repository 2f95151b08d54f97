#include "viewer/model/InputQueue.h"

namespace Tesseret::Viewer {

namespace {

/// The events that a frame has taken so far.
struct Taken {
    std::set<int> keys;
    bool button = false, wheel = false;

    /// Takes the event if it fits beside the others; returns whether it does.
    bool admit(const InputEvent& event)
    {
        if (const auto* const key = std::get_if<KeyEvent>(&event)) {
            return !button && keys.insert(key->key).second;
        }
        if (std::holds_alternative<MotionEvent>(event)) return !button && !wheel;
        if (std::holds_alternative<WheelEvent>(event)) {
            wheel = true;
            return !button;
        }
        if (std::holds_alternative<ButtonEvent>(event)) {
            const bool isFirst = !button;
            button = true;
            return isFirst;
        }
        return true;
    }
};

}  // namespace

std::vector<InputEvent> InputQueue::takeFrame()
{
    std::vector<InputEvent> frame;
    Taken taken;
    while (!events_.empty() && taken.admit(events_.front())) {
        frame.push_back(events_.front());
        events_.pop_front();
    }
    return frame;
}

}  // namespace Tesseret::Viewer
