#include "overlay/RectManipulator.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "overlay/Draw.h"

namespace Orvane {

RectManipulator::RectManipulator(std::string name) : Manipulator(std::move(name))
{
    setColour(kRectangleColour);
    setRect(0.0f, 0.0f, 1.0f, 1.0f);
}

void RectManipulator::setRect(float a, float b, float c, float d)
{
    rect_ = {.xMin = std::min(a, c),
             .xMax = std::max(a, c),
             .yMin = std::min(b, d),
             .yMax = std::max(b, d)};
    setBoundingBox({rect_.xMin, rect_.yMin, rect_.xMax - rect_.xMin, rect_.yMax - rect_.yMin});
}

OvPoint RectManipulator::centre() const
{
    return {(rect_.xMin + rect_.xMax) / 2.0f, (rect_.yMin + rect_.yMax) / 2.0f};
}

Manipulator* RectManipulator::pick(OvPoint pen, OvPoint tolerance)
{
    parts_ = edgesNear(pen, tolerance);
    if (parts_ == 0) parts_ = barsNear(pen, tolerance);
    setGrabbedChild(parts_ != 0 ? this : nullptr);
    return grabbedChild();
}

/// One edge, or two at a corner. Where both of a pair are near, left and top win.
int RectManipulator::edgesNear(OvPoint pen, OvPoint tolerance) const
{
    const auto near = [](float a, float b, float limit) { return std::abs(a - b) < limit; };
    int parts = 0;
    if (rect_.yMin - tolerance.y < pen.y && pen.y < rect_.yMax + tolerance.y) {
        if (near(rect_.xMin, pen.x, tolerance.x)) {
            parts = kLeft;
        } else if (near(rect_.xMax, pen.x, tolerance.x)) {
            parts = kRight;
        }
    }
    if (rect_.xMin - tolerance.x < pen.x && pen.x < rect_.xMax + tolerance.x) {
        if (near(rect_.yMax, pen.y, tolerance.y)) {
            parts |= kTop;
        } else if (near(rect_.yMin, pen.y, tolerance.y)) {
            parts |= kBottom;
        }
    }
    return parts;
}

/// One bar of the cross, or both near the centre.
int RectManipulator::barsNear(OvPoint pen, OvPoint tolerance) const
{
    const float dx = pen.x - centre().x, dy = pen.y - centre().y;
    int parts = 0;
    if (std::abs(dy) < tolerance.y && std::abs(dx) < kArm + tolerance.x) parts = kHorizontalBar;
    if (std::abs(dx) < tolerance.x && std::abs(dy) < kArm + tolerance.y) parts |= kVerticalBar;
    return parts;
}

bool RectManipulator::press(OvPoint pen)
{
    notifyListeners(OverlayEventType::ManipulationStarted, pen);
    lastPen_ = pen;
    setPressed(true);
    return true;
}

bool RectManipulator::release()
{
    notifyListeners(OverlayEventType::ManipulationEnded, lastPen_);
    setPressed(false);
    return true;
}

/// Each step applies the pen's relative motion, so an edge that stopped at the opposite one lags
/// behind the pen when the pen returns.
bool RectManipulator::drag(OvPoint pen)
{
    const float dx = pen.x - lastPen_.x, dy = pen.y - lastPen_.y;
    lastPen_ = pen;
    OvRect moved = rect_;
    if (has(kLeft)) {
        moved.xMin = std::min(rect_.xMin + dx, rect_.xMax);
    } else if (has(kRight)) {
        moved.xMax = std::max(rect_.xMax + dx, rect_.xMin);
    }
    if (has(kBottom)) {
        moved.yMin = std::min(rect_.yMin + dy, rect_.yMax);
    } else if (has(kTop)) {
        moved.yMax = std::max(rect_.yMax + dy, rect_.yMin);
    }
    if (has(kHorizontalBar)) moved.xMin += dx, moved.xMax += dx;
    if (has(kVerticalBar)) moved.yMin += dy, moved.yMax += dy;
    if (moved == rect_) return false;
    setRect(moved.xMin, moved.yMin, moved.xMax, moved.yMax);
    notifyListeners(OverlayEventType::ValueChanged, pen);
    return true;
}

void RectManipulator::draw()
{
    const BlendedLines blended;
    drawCross();
    drawEdges();
}

void RectManipulator::drawCross() const
{
    const Translated atCentre(centre().x, centre().y);
    drawBar(kHorizontalBar, kArm, 0.0f);
    drawBar(kVerticalBar, 0.0f, kArm);
}

void RectManipulator::drawBar(int part, float x, float y) const
{
    if (has(part) && !isPressed() && isHovered()) {
        drawDashedLine(-x, -y, x, y, colour(), kHighlightColour);
        return;
    }
    Orvane::setColour(has(part) && isPressed() ? kHighlightColour : colour());
    drawLine(-x, -y, x, y);
}

void RectManipulator::drawEdges() const
{
    struct Edge {
        int part;
        float x1, y1, x2, y2;
    };
    const auto& [x1, x2, y1, y2] = rect_;
    const std::array<Edge, 4> edges{{{kLeft, x1, y1, x1, y2},
                                     {kRight, x2, y1, x2, y2},
                                     {kBottom, x1, y1, x2, y1},
                                     {kTop, x1, y2, x2, y2}}};
    if (!isHovered() && !isPressed()) {
        Orvane::setColour(colour());
        drawRectOutline(x1, y1, x2, y2);
        return;
    }
    for (const Edge& edge : edges) {
        const OverlayColour& second = has(edge.part) ? kHighlightColour : colour();
        if (isHovered()) {
            drawDashedLine(edge.x1, edge.y1, edge.x2, edge.y2, colour(), second);
        } else {
            Orvane::setColour(second);
            drawLine(edge.x1, edge.y1, edge.x2, edge.y2);
        }
    }
}

}  // namespace Orvane
