#pragma once

#include "engine/map/Map.h"

namespace Orvane::Engine {

/// Writes the luminance of the pixels [x0, x1) of a row, 0 to M: the mean of R, G and B, truncated
/// to an integer at 8 and 16 bits. The image is read through its edge modes.
template <typename Pixel>
void readLuma(const Map<Pixel>& image, int y, int x0, int x1, float* luma);

}  // namespace Orvane::Engine
