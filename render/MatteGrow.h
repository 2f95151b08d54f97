#pragma once

#include "render/MatteValue.h"

namespace Tesseret::Render {

/// Widens what a matte masks: each pixel takes the strongest masking of the disc of this radius (in
/// pixels, 0 or more) round it. The result reaches beyond the matte's bounds as far as the disc and
/// `frame` go. NaN counts as unmasked.
Picture grownMatte(const Picture& matte, double radius, Polarity polarity, const OfxRectI& frame);

}  // namespace Tesseret::Render
