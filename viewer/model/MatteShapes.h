#pragma once

#include <span>

#include "viewer/model/MattePaint.h"

namespace Tesseret::Viewer {

/// Sets every pixel whose centre lies in the polygon. Where its outline crosses itself, the
/// even-odd rule decides. A centre on an edge belongs to the polygon on its left and lower sides
/// only, so that polygons with a common edge share no pixel and leave none out.
void fillPolygon(MattePaint& paint, std::span<const OfxPointD> corners, bool erases);

/// The same for the rectangle between two points.
void fillRectangle(MattePaint& paint, OfxPointD a, OfxPointD b, bool erases);

/// Masks the unmasked pixels connected to a pixel, side by side, if masked ones enclose them.
/// Returns false where nothing does: the pixels reach the edge of the picture, or the pixel is
/// outside or masked.
bool fillEnclosed(MattePaint& paint, OfxPointD at);

/// Every pixel takes the largest value in the disc of this radius around it, in pixels.
void growMatte(MattePaint& paint, double radius);
/// The smallest value; what lies outside of the picture does not count.
void shrinkMatte(MattePaint& paint, double radius);

void clearMatte(MattePaint& paint);
/// Masks what is not masked inside the window, and nothing outside of it.
void invertMatte(MattePaint& paint, const OfxRectI& window);

}  // namespace Tesseret::Viewer
