#pragma once

#include <chrono>

#include "viewer/model/ViewSession.h"

namespace Tesseret::Viewer {

/// Decides what the worker renders, and when: at a proxy scale while something is being dragged, at
/// full scale once it is let go.
class RenderScheduler {
public:
    using Clock = std::chrono::steady_clock;

    /// The session outlives the object.
    explicit RenderScheduler(ViewSession& session) : session_(session) {}

    /// Orders what is missing. `isDragging` while the values are still on their way.
    void update(bool isDragging, bool wantsMaps, Clock::time_point now);
    /// Has the current state rendered again with the next update.
    void renew() { isStale_ = true; }
    /// Whether the last order was one at full scale and has been rendered.
    bool isSettled() const;

private:
    bool mayInterrupt(Clock::time_point now) const;
    void order(bool isDraft, bool wantsMaps, Clock::time_point now);

    ViewSession& session_;
    bool isStale_ = false;  ///< the state is newer than the last order
    std::uint64_t lastSerial_ = 0;
    bool lastWasDraft_ = false, lastHadMaps_ = false;
    Clock::time_point lastOrder_{};
};

/// The largest of 1, 1/2 and 1/4 that keeps a picture of so many pixels under a megapixel; 1/4 for
/// those that none keeps there.
double draftScale(double width, double height);

}  // namespace Tesseret::Viewer
