#pragma once

#include "host/Picture.h"

namespace Tesseret::Files {

/// The picture at another size: every new pixel is the mean of the area it covers. The bounds and
/// the region of definition are those of the scaled edges, made whole outwards. Factors are above
/// 0.
Host::Picture scaled(const Host::Picture& picture, OfxPointD factor);

}  // namespace Tesseret::Files
