#pragma once

#include "engine/map/Region.h"
#include "engine/mask/MaskOrigin.h"

namespace Orvane::Engine {

/// The settings of one render, as plain values. Lengths are pixels of the render.
struct FillParameters {
    bool temporalConsistency = false;  ///< reuse the blocks of an earlier frame
    MaskOrigin maskOrigin = MaskOrigin::None;
    Polarity maskPolarity = Polarity::White;
    Region sampleBox;  ///< where candidates come from
    int seed = 0;
    int blockSize = 1;  ///< width and height; any int, clamped by the quilting like the next three
    int overlap = 0;    ///< horizontal and vertical
    int blendWidth = 0, blendHeight = 0;
    int numSamples = 1;      ///< candidates for each texture and block
    float pathWidth = 0.0f;  ///< reach of the band that the boundary may run in; 0 or more
    float edgeBlend = 0.0f;  ///< softening of the boundary; 0 or more
    bool avoidFillRegion = false;
    bool luminanceMatch = false;
    float luminanceBlur = 0.0f;  ///< 0 or more
};

}  // namespace Orvane::Engine
