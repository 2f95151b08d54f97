#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

#include "render/RenderSettings.h"

namespace Tesseret::Command {

/// Prints what a render would do; `choice` says what a search is still going to choose, or is
/// empty. Throws as `planJob` does. Returns the same as JSON.
nlohmann::ordered_json dryRun(const Render::RenderSettings& settings, const std::string& choice);

}  // namespace Tesseret::Command
