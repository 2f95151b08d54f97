#pragma once

#include <cstdint>
#include <vector>

#include "picture/Picture.h"

namespace Tesseret::Viewer {

/// A part of a picture as a screen takes it: 8-bit RGBA, rows from the lowest up without padding.
/// Whole numbers are shown as they are, floats as linear light through the sRGB curve. Alpha is
/// left out of the display: it comes out full, and a picture of alpha alone comes out grey. `part`
/// lies in the picture's bounds.
std::vector<std::uint8_t> displayPixels(const Picture& picture, const OfxRectI& part);

}  // namespace Tesseret::Viewer
