#pragma once

#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// Turns a band of 0 to M into weights: out = in / M, cut to [0, 1]; 0 where the band is NaN.
class BandWeight final : public Sampler<const Map<Pixel32f>, Map<Pixel32f>> {
public:
    /// `maximum` is M, the channel maximum of the render depth.
    explicit BandWeight(float maximum) : scale_(1.0f / maximum) {}
    void processPass() override;

private:
    float scale_;
};

}  // namespace Orvane::Engine
