#pragma once

/// A fill in steps, each over the result of the one before: parts of a matte with values of their
/// own. A parameter file lists them as "steps"; with one step its keys may stand in the file
/// itself.

#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "render/ParameterText.h"
#include "render/RenderSettings.h"

namespace Tesseret::Render {

/// The settings of each step, at least one. Of the parameter file's further keys ("areas",
/// "matteSide", "matteGrow", "texture1Crop" and so on) those count that the settings leave open.
/// Throws `FileError`, and `UsageError` for a value of the wrong kind.
std::vector<RenderSettings> stepsOf(const RenderSettings& settings);

/// A step to save: the keys above from the settings, and its parameters.
struct FillStep {
    RenderSettings settings;
    ParameterValues values;
};

/// The parameter file of these steps.
nlohmann::ordered_json stepsJson(const std::string& plugin,
                                 const Host::ContextDescription& description,
                                 const std::vector<FillStep>& steps);

}  // namespace Tesseret::Render
