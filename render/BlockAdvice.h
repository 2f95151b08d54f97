#pragma once

/// What to try where blocks do not fit, told before a render, and where a fill went wrong.

#include <string>
#include <string_view>
#include <vector>

#include "render/InstanceSetup.h"
#include "render/PreparedMatte.h"
#include "render/RenderSettings.h"

namespace Tesseret::Render {

/// A line for each of the first `count` areas whose blocks hardly find a place clear of it
/// ("Cannot avoid matte!"), with a size that fits. The areas are in pixels of the render scale.
std::vector<std::string> avoidanceAdvice(const InstanceSetup& setup, const MatteAreas& areas,
                                         std::size_t count, double renderScale);

/// A line where a sample box that was asked for is smaller than a block; else empty.
std::string sampleBoxAdvice(const RenderSettings& settings, const InstanceSetup& setup);

/// What to try after this note of the plug-in; empty for other notes.
std::string adviceOnNote(std::string_view note);

}  // namespace Tesseret::Render
