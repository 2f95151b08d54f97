#pragma once

/// The box that blocks are taken from, as the parameters of the plug-in have it and as people say
/// it.

#include <optional>

#include "render/JobInputs.h"
#include "render/ParameterText.h"

namespace Tesseret::Render {

/// Sets the corners to a box in the first texture, or in the source when there is none. Throws
/// `UsageError` when the values have corners already, or the box lies outside.
void setSampleBox(const ViewBox& box, const JobInputs& inputs, ParameterValues& values);

/// Where nobody said what blocks are to be taken from, a fill keeps clear of what it fills: the
/// plug-in's own default box lies in the middle of the picture, and so, mostly, does the thing that
/// is to go.
void avoidRegionByDefault(const Host::ContextDescription& description, const JobInputs& inputs,
                          ParameterValues& values);

/// Blocks are taken from inside the sample box, so every texture has to cover it. A box that nobody
/// asked for moves into the textures; one that was asked for and does not fit is refused with a
/// `UsageError`.
void fitSampleBox(const Host::ContextDescription& description, const JobInputs& inputs,
                  ParameterValues& values);

/// The part of the source that blocks are taken from, in pixels; none when they come from a texture
/// or keep clear of the region to fill.
std::optional<OfxRectI> boxInSource(const Host::ContextDescription& description,
                                    const JobInputs& inputs, const ParameterValues& values);

}  // namespace Tesseret::Render
