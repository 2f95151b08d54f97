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

/// Keeps the part of a band that lies outside the fill region.
///
/// band(x, y) stays where fillMask(x, y) is exactly 0 and the band is at least M / 255; it becomes
/// 0 elsewhere, and where it is NaN. Both maps hold 0 to M; where the mask has no pixel, its fill
/// value is used.
class BandCut final : public Sampler<const Map<Pixel32f>, Map<Pixel32f>> {
public:
    /// `maximum` is M, the channel maximum of the render depth.
    explicit BandCut(float maximum) : minKept_(maximum / 255.0f) {}
    void processPass() override;

private:
    float minKept_;
};

}  // namespace Orvane::Engine
