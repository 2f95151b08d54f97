#pragma once

#include "render/MatteAreas.h"

namespace Tesseret::Fill {

/// A picture of one byte for each pixel of `bounds`, 255 where a matte's areas are, else 0.
Picture lostPixels(const Render::MatteAreas& areas, Render::Polarity polarity,
                   const OfxRectI& bounds);

/// Likewise for one area and the bounds of its box.
Picture areaPixels(const Render::MatteAreas& areas, Render::Polarity polarity, std::size_t area);

/// The pixels of one area.
std::size_t pixelsOf(const Render::MatteAreas& areas, Render::Polarity polarity, std::size_t area);

}  // namespace Tesseret::Fill
