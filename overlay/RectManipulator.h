#pragma once

#include "overlay/Manipulator.h"

namespace Orvane {

/// A rectangle with a cross at its centre: its edges are dragged one or two at a time, and the
/// whole by the cross. Canonical units.
class RectManipulator final : public Manipulator {
public:
    // The parts, as bits.
    static constexpr int kLeft = 1, kRight = 2, kBottom = 4, kTop = 8;
    static constexpr int kHorizontalBar = 16, kVerticalBar = 32;
    /// The bars reach this far to each side of the centre.
    static constexpr float kArm = 20.0f;

    explicit RectManipulator(std::string name);

    Manipulator* pick(OvPoint pen, OvPoint tolerance) override;
    void draw() override;
    bool drag(OvPoint pen) override;
    bool press(OvPoint pen) override;
    bool release() override;

    /// Two opposite corners, in any order.
    virtual void setRect(float a, float b, float c, float d);
    /// In order: x1 <= x2, y1 <= y2.
    OvRect rect() const { return rect_; }
    /// The parts under the pen at the last pick.
    int parts() const { return parts_; }

private:
    int edgesNear(OvPoint pen, OvPoint tolerance) const;
    int barsNear(OvPoint pen, OvPoint tolerance) const;
    OvPoint centre() const;
    bool has(int part) const { return (parts_ & part) != 0; }
    void drawCross() const;
    void drawBar(int part, float x, float y) const;
    void drawEdges() const;

    OvRect rect_{.xMin = 0.0f, .xMax = 1.0f, .yMin = 0.0f, .yMax = 1.0f};
    int parts_ = 0;
    OvPoint lastPen_;  ///< at the last press or drag step
};

}  // namespace Orvane
