#pragma once

#include <cstddef>

#include "engine/map/PixelTypes.h"

namespace Orvane::Engine {

/// The direction along the band at a gradient, to the nearest 45 degrees: 0 to 7 for 0 to 315
/// degrees, x to the right and y down the rows. A gradient without length gives 0 or 4, by its
/// zeros' signs; NaN gives 5.
std::size_t octantOf(const PixelVec2f& g);

}  // namespace Orvane::Engine
