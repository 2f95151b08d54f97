#pragma once

#include <chrono>

namespace Tesseret::Viewer {

/// Plays a sequence: says when the next frame is due.
class Playback {
public:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds kFrameTime{40};

    bool isPlaying() const { return isPlaying_; }
    void toggle(Clock::time_point now);
    void stop() { isPlaying_ = false; }
    /// Whether to go to the next frame: a frame's time has passed and the frame is complete.
    bool isDue(bool isComplete, Clock::time_point now);

private:
    bool isPlaying_ = false;
    Clock::time_point shown_{};
};

}  // namespace Tesseret::Viewer
