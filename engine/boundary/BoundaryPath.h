#pragma once

#include "engine/boundary/PathSearch.h"
#include "engine/pass/MapProcessor.h"
#include "libraries/Processor/RenderStatus.h"

namespace Orvane::Engine {

/// The inputs of the boundary path. Maps are borrowed for one call; masks hold 0 to M.
template <typename Pixel>
struct BoundaryInputs {
    PathSearchInputs<Pixel> search;           ///< the band and the two images
    const Map<Pixel32f>* fillMask = nullptr;  ///< M is to be filled
    int seed = 0;
    float edgeBlend = 0.0f;                ///< radius in pixels of the final softening
    RenderStatus* statusRecord = nullptr;  ///< may be null
    /// Gets the closed path, if there is one; may be null.
    std::vector<PixelPoint>* path = nullptr;
};

enum class BoundaryOutcome {
    Fitted,        ///< the composite mask is the area that the path encloses
    NoPath,        ///< no path was found; the composite mask is unchanged
    TraceFailed,   ///< the path could not be traced: the composite mask is the fill region
    NotEnclosing,  ///< the path does not enclose the region: the composite mask is the fill region
};

/// Determines where texture replaces source: searches the closed path round the fill region along
/// which the two images differ least, and makes the area it encloses, softened by `edgeBlend`, the
/// composite mask.
///
/// In a concave corner the search can close its loop after a few pixels. The painted area then
/// reaches the border of the work region, or excludes part of the fill region; the fill region
/// becomes the composite mask instead.
template <typename Pixel>
BoundaryOutcome fitBoundaryPath(const BoundaryInputs<Pixel>& inputs, Map<Pixel32f>& compositeMask);

}  // namespace Orvane::Engine
