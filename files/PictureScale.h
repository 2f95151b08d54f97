#pragma once

#include "picture/Picture.h"

namespace Tesseret::Files {

/// Scales a picture: every new pixel is the mean of the area it covers. The bounds and the region
/// of definition are scaled and rounded outwards. Factors are above 0.
Picture scaled(const Picture& picture, OfxPointD factor);

}  // namespace Tesseret::Files
