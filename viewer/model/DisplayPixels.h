#pragma once

#include <cstdint>
#include <vector>

#include "picture/Picture.h"

namespace Tesseret::Viewer {

/// A part of a picture for display: 8-bit RGBA, rows from the lowest up without padding. Integers
/// are shown as they are, floats as linear light through the sRGB curve. Alpha is not displayed: it
/// is always full, and an alpha-only picture is grey. `part` lies in the picture's bounds.
std::vector<std::uint8_t> displayPixels(const Picture& picture, const OfxRectI& part);

}  // namespace Tesseret::Viewer
