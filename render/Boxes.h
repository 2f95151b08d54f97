#pragma once

/// The boxes of a job, the window to render and the sample box: in pixels, as the user gives them,
/// and as the plug-in's parameters.

#include <optional>
#include <string>
#include <vector>

#include "render/JobInputs.h"
#include "render/ParameterText.h"

namespace Tesseret::Render {

/// The part of the source to render, in its pixels: the given window, clipped at the data window,
/// or the whole data window. Throws `UsageError` when the result is empty.
OfxRectI windowInSource(const RenderSettings& settings, const Files::PictureInfo& source);

/// The pixels of the picture that a box covers, partly covered ones included. Throws `UsageError`,
/// which names the option, when there are none.
OfxRectI boxInPicture(const std::string& option, const ViewBox& box,
                      const Files::PictureInfo& picture);

/// A line for each box of the settings that is clipped, with the part that is used. Throws
/// `UsageError` when that part is empty.
std::vector<std::string> clippedBoxes(const RenderSettings& settings, const JobInputs& inputs);

/// Sets the corners to a box in the first texture, or in the source when there is none; a box in
/// the source is clipped. Throws `UsageError` when the values have corners already, or the box lies
/// outside.
void setSampleBox(const ViewBox& box, const JobInputs& inputs, ParameterValues& values);

/// The picture that the sample box lies over: the first texture, else the source.
const Files::PictureInfo& sampledPicture(const JobInputs& inputs);

/// Sets the corners to a box in pixels of that picture, y upwards, which are rounded down.
void setCorners(const OfxRectD& pixels, const JobInputs& inputs, ParameterValues& values);

/// The sample box in pixels of that picture, y upwards, its corners in order.
OfxRectI sampleBoxOf(const Host::ContextDescription& description, const JobInputs& inputs,
                     const ParameterValues& values);

/// Turns on avoiding the fill region where the user chose neither box nor texture: the plug-in's
/// default box lies in the middle of the picture, where the object to remove mostly is.
void avoidRegionByDefault(const Host::ContextDescription& description, const JobInputs& inputs,
                          ParameterValues& values);

/// Blocks are taken from the sample box, so every texture has to cover it. The default box is moved
/// into the textures; throws `UsageError` for a box of the user's that does not fit.
void fitSampleBox(const Host::ContextDescription& description, const JobInputs& inputs,
                  ParameterValues& values);

/// The part of the source that blocks are taken from, in pixels; none when they come from a texture
/// or keep clear of the region to fill.
std::optional<OfxRectI> boxInSource(const Host::ContextDescription& description,
                                    const JobInputs& inputs, const ParameterValues& values);

}  // namespace Tesseret::Render
