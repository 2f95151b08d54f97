#pragma once

#include <string>

#include "render/InstanceSetup.h"

namespace Tesseret::Viewer {

/// The `tesseret render` command that renders the settings' files with the current setup, for a
/// POSIX shell in any folder. It has only the options that the command needs. Without an output in
/// the settings the result is named after the source. Throws as `InstanceSetup` does.
std::string commandText(const Render::RenderSettings& settings, const Render::InstanceSetup& setup,
                        Render::PluginSession& session);

/// Likewise for settings whose parameter file or text has all values but those that `parameters`
/// override.
std::string commandWithFile(const Render::RenderSettings& settings);

/// "name=value", which is read as exactly this value again.
std::string assignmentText(const Host::ParameterDescription& parameter,
                           const Host::ParameterValue& value);

}  // namespace Tesseret::Viewer
