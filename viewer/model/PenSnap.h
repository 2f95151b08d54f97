#pragma once

#include "ofx/ofxCore.h"

namespace Tesseret::Viewer {

/// Moves a pen that is near an edge, a corner or the centre of a box onto it, so that it is caught
/// at any zoom: the overlay's own tolerance is a few units of the picture. `reach` is in units of
/// the picture. Away from these places the pen stays where it is.
OfxPointD snappedPen(OfxPointD pen, const OfxRectD& box, double reach);

}  // namespace Tesseret::Viewer
