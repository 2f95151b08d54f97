#pragma once

#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// The luminance of an image, 0 to M: the mean of R, G and B, truncated to an integer at 8 and 16
/// bits. The image is read through its edge modes.
template <typename Pixel>
class LumaOf final : public Sampler<const Map<Pixel>, Map<Pixel32f>> {
public:
    void processPass() override;
};

}  // namespace Orvane::Engine
