#include "viewer/window/Workspace.h"

#include <algorithm>
#include <utility>

namespace Tesseret::Viewer {

Workspace::Workspace(std::unique_ptr<ViewSession> opened, MessageLog& log)
    : session(std::move(opened)),
      picture(*session, log),
      panel(*session, log),
      variations(*session, log),
      status(*session, log),
      scheduler(*session),
      filledRegion_(fillsRegion())
{}

bool Workspace::fillsRegion() const
{
    return session->fillRegion().source != Render::MaskSource::None;
}

Progress Workspace::progress() const
{
    Progress progress;
    progress.hasPicture = true;
    progress.fillsRegion = fillsRegion();
    progress.fillsMatte = session->fillRegion().source == Render::MaskSource::Matte;
    progress.hasPaint = session->hasPaint();
    progress.isDrawing = picture.isDrawing();
    progress.isRendering = session->worker().state().isRendering;
    progress.isChoosing = session->search().isBusy();
    progress.hasChosen = session->hasList();
    progress.hasFills = !session->variations().empty();
    progress.showsSource = picture.layers().layer() == Layer::Source;
    progress.obstacle = session->paintObstacle();
    progress.tool = picture.tools().kind();
    if (const auto latest = session->worker().latest()) {
        progress.hasFailed = !latest->error.empty();
        progress.isSaved = latest->serial == savedSerial;
        progress.areas = latest->areas.size();
    }
    return progress;
}

bool Workspace::showLatest()
{
    const auto result = session->worker().latest();
    if (!result || result->serial == shownSerial_) return false;
    shownSerial_ = result->serial;
    picture.update();
    return true;
}

/// A picture that is only looked at costs no render. While the first settings are being chosen the
/// trials are seen, not what a fill with other settings would be.
void Workspace::schedule(bool wantsResult)
{
    if (session->isPainting()) return;
    if (session->search().isBusy() && !session->worker().latest()) return;
    const bool isIdle = picture.layers().layer() == Layer::Source && !fillsRegion();
    if (isIdle && !wantsResult) return;
    const bool wantsMaps = !mapName(picture.layers().layer()).empty();
    scheduler.update(picture.isEditing() || panel.isDragging(), wantsMaps,
                     RenderScheduler::Clock::now());
}

void Workspace::followRegion()
{
    const bool before = std::exchange(filledRegion_, fillsRegion());
    if (before == filledRegion_) return;
    PictureLayers& layers = picture.layers();
    if (filledRegion_ && layers.layer() == Layer::Source) layers.choose(Layer::Result);
    if (!filledRegion_ && !session->hasPaint() && layers.layer() == Layer::Result)
        layers.choose(Layer::Source);
}

void Workspace::step(int frames)
{
    const std::vector<int>& all = session->frames();
    const auto place = std::ranges::find(all, session->frame()) - all.begin();
    const auto last = static_cast<std::ptrdiff_t>(all.size()) - 1;
    showFrame(all[static_cast<std::size_t>(std::clamp(place + frames, std::ptrdiff_t{0}, last))]);
}

void Workspace::showFrame(int frame)
{
    session->setFrame(frame);
    picture.update();
}

}  // namespace Tesseret::Viewer
