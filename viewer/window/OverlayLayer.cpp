#include "viewer/window/OverlayLayer.h"

#include <cmath>

namespace Tesseret::Viewer {

void OverlayLayer::updateView(Host::Interact& overlay, const View& view) const
{
    Host::Interact::View& told = overlay.view();
    told.time = session_.frame();
    told.pixelScale = {1.0 / view.scale(), 1.0 / view.scale()};
    told.viewportSize = {std::round(view.area().width), std::round(view.area().height)};
}

void OverlayLayer::draw(const View& view)
{
    Host::Interact* const overlay = session_.overlay();
    if (overlay == nullptr) return;
    updateView(*overlay, view);
    overlay->draw();
}

bool OverlayLayer::send(PenAction action, const View& view, OfxPointD screen)
{
    Host::Interact* const overlay = session_.overlay();
    if (overlay == nullptr) return false;
    updateView(*overlay, view);
    const ScreenArea& area = view.area();
    const Host::Interact::Pen pen{
        .position = view.toCanonical(screen),
        .viewport = {static_cast<int>(std::lround(screen.x - area.x)),
                     static_cast<int>(std::lround(area.y + area.height - screen.y))}};
    OfxStatus status = kOfxStatReplyDefault;
    if (action == PenAction::Motion) status = overlay->penMotion(pen);
    if (action == PenAction::Down) status = overlay->penDown(pen);
    if (action == PenAction::Up) status = overlay->penUp(pen);
    session_.noticePluginEdits();
    return status == kOfxStatOK;
}

void OverlayLayer::move(const View& view, OfxPointD screen)
{
    send(PenAction::Motion, view, screen);
}

bool OverlayLayer::press(const View& view, OfxPointD screen)
{
    session_.beginGroup();
    isDragging_ = send(PenAction::Down, view, screen);
    // An overlay that takes no part still has to learn that the pen is up again.
    if (!isDragging_) release(view, screen);
    return isDragging_;
}

void OverlayLayer::release(const View& view, OfxPointD screen)
{
    send(PenAction::Up, view, screen);
    isDragging_ = false;
    session_.endGroup();
}

}  // namespace Tesseret::Viewer
