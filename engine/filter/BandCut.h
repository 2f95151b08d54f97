#pragma once

#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// Keeps the part of a band that lies outside the fill region.
///
/// band(x, y) stays where fillMask(x, y) is exactly 0 and the band is at least M / 255; it becomes
/// 0 elsewhere, and where it is NaN. Both maps hold 0 to M; where the mask has no pixel, its fill
/// value decides.
class BandCut final : public Sampler<const Map<Pixel32f>, Map<Pixel32f>> {
public:
    /// `maximum` is M, the channel maximum of the render depth.
    explicit BandCut(float maximum) : weakestKept_(maximum / 255.0f) {}
    void processPass() override;

private:
    float weakestKept_;
};

}  // namespace Orvane::Engine
