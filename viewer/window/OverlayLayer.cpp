#include "viewer/window/OverlayLayer.h"

#include <cmath>

namespace Tesseret::Viewer {

void OverlayLayer::updateView(Host::Interact& overlay, const View& view) const
{
    Host::Interact::View& target = overlay.view();
    target.time = session_.frame();
    target.pixelScale = {1.0 / view.scale(), 1.0 / view.scale()};
    target.viewportSize = {std::round(view.area().width), std::round(view.area().height)};
}

void OverlayLayer::draw(const View& view)
{
    Host::Interact* const overlay = session_.overlay();
    if (overlay == nullptr) return;
    updateView(*overlay, view);
    overlay->draw();
}

Host::Interact::Pen OverlayLayer::penAt(const View& view, OfxPointD screen)
{
    if (Host::Interact* const overlay = session_.overlay()) updateView(*overlay, view);
    const ScreenArea& area = view.area();
    return {.position = view.toCanonical(screen),
            .viewport = {static_cast<int>(std::lround(screen.x - area.x)),
                         static_cast<int>(std::lround(area.y + area.height - screen.y))}};
}

}  // namespace Tesseret::Viewer
