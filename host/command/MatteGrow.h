#pragma once

#include "host/command/MatteValue.h"

namespace Tesseret::Command {

/// Widens what a matte masks: each pixel takes the strongest masking of the disc of this radius (in
/// pixels, 0 or more) round it. The result reaches beyond the matte's bounds as far as the disc and
/// `frame` go. NaN counts as unmasked.
Host::Picture grownMatte(const Host::Picture& matte, double radius, Polarity polarity,
                         const OfxRectI& frame);

}  // namespace Tesseret::Command
