#pragma once

/// The options shared by all subcommands that render.

#include <array>
#include <string>

#include <CLI/CLI.hpp>

#include "render/RenderSettings.h"

namespace Tesseret::Command {

/// The options as written on the command line.
struct RenderOptions {
    Render::RenderSettings settings;
    std::string frames, depth, window, sampleBox, areas = "all", matteWindow = "area", matteSide;
    std::array<std::string, 3> textureCrops;
    bool matteInverted = false, fillAlpha = false, fillAlphaInverted = false;
};

/// Source, output, textures, frames and compression. A render requires source and output.
void addFileOptions(CLI::App& command, RenderOptions& options, bool isRender);
/// The region to fill.
void addMatteOptions(CLI::App& command, RenderOptions& options);
/// Which part of the picture is rendered, how large, and as in which host.
void addPictureOptions(CLI::App& command, RenderOptions& options);
/// The plug-in, its setup, and values for its parameters.
void addPluginOptions(CLI::App& command, RenderOptions& options);

/// Throws `UsageError` for a text that its option does not accept.
Render::RenderSettings settingsFrom(const RenderOptions& options);

}  // namespace Tesseret::Command
