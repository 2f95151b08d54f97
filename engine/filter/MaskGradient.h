#pragma once

#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// Forward differences of a mask: out(x, y) = (m(x + 1, y) - m(x, y), m(x, y + 1) - m(x, y)). At
/// the blurred edge of a region they point into the region.
///
/// Mask values of 0 to M; differences of -M to M. The mask is read through its edge modes.
class MaskGradient final : public Sampler<const Map<Pixel32f>, Map<PixelVec2f>> {
public:
    void processPass() override;
};

}  // namespace Orvane::Engine
