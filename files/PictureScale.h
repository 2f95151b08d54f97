#pragma once

#include "picture/Picture.h"

namespace Tesseret::Files {

/// The picture at another size: every new pixel is the mean of the area it covers. The bounds and
/// the region of definition are those of the scaled edges, made whole outwards. Factors are above
/// 0.
Picture scaled(const Picture& picture, OfxPointD factor);

}  // namespace Tesseret::Files
