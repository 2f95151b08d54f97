#include "viewer/model/Playback.h"

namespace Tesseret::Viewer {

void Playback::toggle(Clock::time_point now)
{
    isPlaying_ = !isPlaying_;
    shown_ = now;
}

bool Playback::isDue(bool isComplete, Clock::time_point now)
{
    if (!isPlaying_ || !isComplete || now - shown_ < kFrameTime) return false;
    shown_ = now;
    return true;
}

}  // namespace Tesseret::Viewer
