#pragma once

/// The options that every subcommand that renders has.

#include <string>

#include <CLI/CLI.hpp>

#include "render/RenderSettings.h"

namespace Tesseret::Command {

/// As they stand on the command line.
struct RenderOptions {
    Render::RenderSettings settings;
    std::string frames, depth, window, sampleBox, areas = "all", matteWindow = "area";
    bool matteInverted = false, fillAlpha = false, fillAlphaInverted = false;
};

/// Source, output, textures, frames and compression.
void addFileOptions(CLI::App& command, RenderOptions& options, bool wantsOutput);
/// What is to be filled.
void addMatteOptions(CLI::App& command, RenderOptions& options);
/// The plug-in, how it is set up, and values for its parameters.
void addPluginOptions(CLI::App& command, RenderOptions& options);

/// Throws `UsageError` for a text that is none of what its option takes.
Render::RenderSettings settingsFrom(const RenderOptions& options);
/// Has picture files read and written by as many threads as the settings say.
void useThreads(const Render::RenderSettings& settings);

}  // namespace Tesseret::Command
