#pragma once

#include "viewer/model/MattePaint.h"

namespace Tesseret::Viewer {

/// A round brush, in pixels of the picture.
struct Brush {
    static constexpr double kMinSize = 2.0, kMaxSize = 2000.0;

    double size = 40.0;      ///< the diameter
    double softness = 0.25;  ///< the share of the radius over which it fades, 0 to 1

    /// 255 up to the hard part's radius, 0 from the radius on, a smooth ramp between them.
    std::uint8_t strengthAt(double distance) const;
};

/// Draws the brush along a line. A pixel takes the strength at the distance of its centre from the
/// line where that is more than it has; `erases` takes it away instead. So the order in which parts
/// of a stroke are drawn, and how often, makes no difference.
void drawStroke(MattePaint& paint, const Brush& brush, OfxPointD from, OfxPointD to, bool erases);

}  // namespace Tesseret::Viewer
