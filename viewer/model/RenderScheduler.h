#pragma once

#include <chrono>

#include "viewer/model/ViewSession.h"

namespace Tesseret::Viewer {

/// Decides what the worker renders, and when: at a proxy scale during a drag, at full scale after
/// it.
class RenderScheduler {
public:
    using Clock = std::chrono::steady_clock;

    /// The session outlives the object.
    explicit RenderScheduler(ViewSession& session) : session_(session) {}

    /// Requests the renders that are missing. `isDragging` while the values are still changing.
    void update(bool isDragging, bool wantsMaps, Clock::time_point now);
    /// Renders the current state again with the next update.
    void renew() { isStale_ = true; }
    /// Whether the last request was at full scale and has been rendered.
    bool isSettled() const;

private:
    bool mayInterrupt(Clock::time_point now) const;
    void request(bool isDraft, bool wantsMaps, Clock::time_point now);

    ViewSession& session_;
    bool isStale_ = false;  ///< the state is newer than the last request
    std::uint64_t lastSerial_ = 0;
    bool lastWasDraft_ = false, lastHadMaps_ = false;
    Clock::time_point lastRequest_{};
};

/// The largest of 1, 1/2 and 1/4 at which a picture of this size has less than a megapixel, else
/// 1/4.
double draftScale(double width, double height);

}  // namespace Tesseret::Viewer
