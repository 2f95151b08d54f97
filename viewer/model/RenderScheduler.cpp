#include "viewer/model/RenderScheduler.h"

namespace Tesseret::Viewer {

namespace {

constexpr double kMaxDraftPixels = 1e6;
/// A draft may run this long before the next one aborts it; otherwise a drag without pauses would
/// show nothing.
constexpr auto kDraftGracePeriod = std::chrono::milliseconds(1000);

}  // namespace

double draftScale(double width, double height)
{
    for (const double scale : {1.0, 0.5}) {
        if (width * scale * height * scale < kMaxDraftPixels) return scale;
    }
    return 0.25;
}

bool RenderScheduler::isSettled() const
{
    const auto latest = session_.worker().latest();
    return latest && latest->serial == lastSerial_ && !lastWasDraft_;
}

bool RenderScheduler::mayInterrupt(Clock::time_point now) const
{
    if (!lastWasDraft_ || !session_.worker().state().isRendering) return true;
    return now - lastRequest_ > kDraftGracePeriod;
}

void RenderScheduler::request(bool isDraft, bool wantsMaps, Clock::time_point now)
{
    double scale = session_.fullScale();
    if (isDraft) {
        const OfxRectI window = session_.inputs().source().dataWindow;
        scale *= draftScale((window.x2 - window.x1) * scale, (window.y2 - window.y1) * scale);
    }
    lastSerial_ = session_.request(scale, wantsMaps);
    isStale_ = false;
    lastWasDraft_ = isDraft;
    lastHadMaps_ = wantsMaps;
    lastRequest_ = now;
}

void RenderScheduler::update(bool isDragging, bool wantsMaps, Clock::time_point now)
{
    if (session_.takeChanged()) isStale_ = true;
    if (isDragging) {
        if (isStale_ && mayInterrupt(now)) request(/*isDraft=*/true, wantsMaps, now);
        return;
    }
    if (isStale_ || lastWasDraft_ || (wantsMaps && !lastHadMaps_)) request(false, wantsMaps, now);
}

}  // namespace Tesseret::Viewer
