#pragma once

/// The boxes of a job, the part to render and the one that blocks are taken from: as the user gives
/// them, in pixels, and as the parameters of the plug-in have them.

#include <optional>
#include <string>
#include <vector>

#include "render/JobInputs.h"
#include "render/ParameterText.h"

namespace Tesseret::Render {

/// The part of the source to render, in its pixels: those that cover the window given, clipped at
/// the data window, or all of them. Throws `UsageError` when nothing is left.
OfxRectI windowInSource(const RenderSettings& settings, const Files::PictureInfo& source);

/// A line for each box of the settings that is clipped, with what is used of it. Throws
/// `UsageError` when nothing is left.
std::vector<std::string> clippedBoxes(const RenderSettings& settings, const JobInputs& inputs);

/// Sets the corners to a box in the first texture, or in the source when there is none, where it is
/// clipped. Throws `UsageError` when the values have corners already, or the box lies outside.
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
