#pragma once

#include <algorithm>
#include <optional>

#include "render/InstanceSetup.h"

namespace Tesseret::Render {

/// The values that decide how a fill is made of blocks; lengths in pixels of the render.
struct BlockValues {
    int block = 0;  ///< the parameter itself
    double overlap = 0.0;
    double margin = 0.0;  ///< of the fill rectangle round a mask
    double samples = 0.0, scale = 1.0;
    bool avoids = false, matchesLuminance = false;

    int pixels(int size) const { return std::max(1, static_cast<int>(size * scale)); }
    /// The number of blocks of a size, in pixels, that a fill rectangle takes.
    double blocksIn(double width, double height, double blockWidth, double blockHeight) const;
};

/// At a render scale; nullopt for a plug-in that has other parameters.
std::optional<BlockValues> blockValuesOf(const InstanceSetup& setup, double scale);

}  // namespace Tesseret::Render
