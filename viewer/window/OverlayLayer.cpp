#include "viewer/window/OverlayLayer.h"

#include <algorithm>
#include <cmath>

#include "effect/ParameterNames.h"
#include "viewer/model/PenSnap.h"

namespace Tesseret::Viewer {

namespace {

constexpr double kReach = 9.0;  ///< screen units within which the box is caught

}  // namespace

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

/// Where the overlay draws the sample box: at its corners, in parts of the project.
std::optional<OfxRectD> OverlayLayer::box() const
{
    if (!session_.sampleBox()) return std::nullopt;
    const auto corner = [&](const char* name) {
        return std::get<std::vector<double>>(session_.value(name));
    };
    const auto a = corner(Names::kSampleCorner1), b = corner(Names::kSampleCorner2);
    const Files::PictureInfo& source = session_.inputs().source();
    const double width = source.displayWindow.x2 * source.pixelAspectRatio;
    const double height = source.displayWindow.y2;
    return OfxRectD{std::min(a[0], b[0]) * width, std::min(a[1], b[1]) * height,
                    std::max(a[0], b[0]) * width, std::max(a[1], b[1]) * height};
}

/// A drag goes on from where the box was caught.
OfxPointD OverlayLayer::caught(const View& view, OfxPointD pen)
{
    if (!session_.isDragging()) {
        const std::optional<OfxRectD> place = box();
        const OfxPointD snapped = place ? snappedPen(pen, *place, kReach / view.scale()) : pen;
        offset_ = {snapped.x - pen.x, snapped.y - pen.y};
    }
    return {pen.x + offset_.x, pen.y + offset_.y};
}

Host::Interact::Pen OverlayLayer::penAt(const View& view, OfxPointD screen)
{
    if (Host::Interact* const overlay = session_.overlay()) updateView(*overlay, view);
    const ScreenArea& area = view.area();
    const OfxPointD pen = caught(view, view.toCanonical(screen));
    const OfxPointD shown = view.toScreen(pen);
    return {.position = pen,
            .viewport = {static_cast<int>(std::lround(shown.x - area.x)),
                         static_cast<int>(std::lround(area.y + area.height - shown.y))}};
}

}  // namespace Tesseret::Viewer
