#pragma once

#include "engine/boundary/PathSearch.h"
#include "engine/pass/MapProcessor.h"
#include "libraries/Processor/RenderStatus.h"

namespace Orvane::Engine {

/// What the boundary path is fitted from. Maps are borrowed for one call; masks hold 0 to M.
template <typename Pixel>
struct BoundaryInputs {
    PathSearchInputs<Pixel> search;           ///< the band and the two pictures
    const Map<Pixel32f>* fillMask = nullptr;  ///< M is to be filled
    int seed = 0;
    float edgeBlend = 0.0f;                ///< radius in pixels of the final softening
    RenderStatus* statusRecord = nullptr;  ///< may be null
    std::vector<PixelPoint>* path =
        nullptr;  ///< gets the closed path, if there is one; may be null
};

enum class BoundaryOutcome {
    Fitted,        ///< the composite mask is what the path encloses
    NoPath,        ///< no path was found; the composite mask is as it was
    TraceFailed,   ///< the path could not be traced: the composite mask is the fill region
    NotEnclosing,  ///< the path does not enclose the region: the composite mask is the fill region
};

/// Decides where texture replaces source: searches the closed path round the fill region along
/// which the two pictures differ least, and makes the area it encloses, softened by `edgeBlend`,
/// the composite mask.
///
/// In a concave corner the search can close its loop after a few pixels. What is painted then
/// reaches the border of the work region, or leaves part of the fill region out; the fill region
/// itself becomes the composite mask instead.
template <typename Pixel>
BoundaryOutcome fitBoundaryPath(const BoundaryInputs<Pixel>& inputs, Map<Pixel32f>& compositeMask);

}  // namespace Orvane::Engine
