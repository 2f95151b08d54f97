#pragma once

#include "engine/RenderContext.h"
#include "engine/TemporalState.h"
#include "engine/map/PixelTypes.h"

namespace Orvane::Engine {

/// Renders one frame: fetches the images, asks what is to be done, decides whether the recorded
/// blocks are laid again, and runs the synthesis node over the render window.
///
/// `depth` is the RGBA kind that the host announced for the output; an output image that says
/// otherwise of itself is believed. Without an output image, without a source image of the same
/// kind or with an empty window nothing is rendered and the state is untouched. Failures of workers
/// pass as exceptions of the family Orvane::Exceptions; an abort shows in the context's status
/// record.
void renderFrame(RenderContext& context, TemporalState& state, PixelKind depth);

}  // namespace Orvane::Engine
