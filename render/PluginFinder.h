#pragma once

#include <filesystem>
#include <string_view>

#include "host/Plugin.h"

namespace Tesseret::Render {

/// The effect that this program is made for.
inline constexpr std::string_view kTesseretIdentifier = "com.orvane.brisant.tesseret";

/// The bundle to use when none is named: beside the folder of this program, then in the folders of
/// OFX_PLUGIN_PATH, then in the system's. Throws `UsageError` that lists where it looked.
std::filesystem::path findPlugin();

/// The effect of a library that this program is made for, or else its first. Throws `HostError`.
OfxPlugin& choosePlugin(const Host::PluginLibrary& library);

}  // namespace Tesseret::Render
