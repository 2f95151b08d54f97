#pragma once

#include <string>

#include "render/InstanceSetup.h"

namespace Tesseret::Viewer {

/// The `tesseret render` command that renders the settings' files as they are set up, for a POSIX
/// shell in any folder. It says only what the command would not do by itself. Without an output in
/// the settings the result is named after the source. Throws as `InstanceSetup` does.
std::string commandText(const Render::RenderSettings& settings, const Render::InstanceSetup& setup,
                        Render::PluginSession& session);

}  // namespace Tesseret::Viewer
