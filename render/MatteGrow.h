#pragma once

#include "render/MatteValue.h"

namespace Tesseret::Render {

/// Widens the masked region of a matte: each pixel takes the strongest masking in the disc of this
/// radius (in pixels, 0 or more) around it. The result extends beyond the matte's bounds as far as
/// the disc and `frame` allow. NaN counts as unmasked.
Picture grownMatte(const Picture& matte, double radius, Polarity polarity, const OfxRectI& frame);

}  // namespace Tesseret::Render
