#pragma once

#include "engine/RenderContext.h"
#include "engine/TemporalState.h"
#include "engine/map/PixelTypes.h"

namespace Orvane::Engine {

/// Renders one frame: fetches the images, reads the settings, decides whether to replay the
/// recorded blocks, and runs the synthesis node over the render window.
///
/// `depth` is the RGBA kind that the host announced for the output; the kind of the output image
/// itself takes precedence. Without an output image, without a source image of the same kind or
/// with an empty window nothing is rendered and the state is untouched. A failed worker throws an
/// exception of the family Orvane::Exceptions; an abort shows in the context's render status.
void renderFrame(RenderContext& context, TemporalState& state, PixelKind depth);

}  // namespace Orvane::Engine
