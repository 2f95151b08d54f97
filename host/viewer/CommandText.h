#pragma once

#include <string>

#include "host/command/InstanceSetup.h"

namespace Tesseret::Viewer {

/// The `tesseret render` command that renders the settings' files as they are set up, for a POSIX
/// shell in any folder. It says only what the command would not do by itself. Without an output in
/// the settings the result is named after the source. Throws as `InstanceSetup` does.
std::string commandText(const Command::RenderSettings& settings,
                        const Command::InstanceSetup& setup, Command::PluginSession& session);

}  // namespace Tesseret::Viewer
