#pragma once

/// The options shared by all subcommands that render.

#include <array>
#include <string>

#include <CLI/CLI.hpp>

#include "render/RenderSettings.h"

namespace Tesseret::Command {

/// The files that a command needs.
enum class FilesWanted {
    Render,  ///< source and output
    Fill,    ///< and a matte
    View,    ///< any
    Wedge,   ///< a source
};

/// The options as written on the command line.
struct RenderOptions {
    FilesWanted files = FilesWanted::Render;
    bool needsOutput = true;  ///< unless a sheet is written
    Render::RenderSettings settings;
    std::string frames, depth, window, sampleBox, areas = "all", matteWindow = "area", matteSide;
    std::array<std::string, 3> textureCrops;
    bool json = false, dryRun = false;
    bool matteInverted = false, fillAlpha = false, fillAlphaInverted = false;
};

/// Source, output, textures, frames and compression. A render requires source and output.
void addFileOptions(CLI::App& command, RenderOptions& options, bool isRender);
/// What is printed in place of, or beside, the result.
void addReportOptions(CLI::App& command, RenderOptions& options);
/// The region to fill.
void addMatteOptions(CLI::App& command, RenderOptions& options);
/// Which part of the picture is rendered, how large, and as in which host.
void addPictureOptions(CLI::App& command, RenderOptions& options);
/// The plug-in, its setup, and values for its parameters.
void addPluginOptions(CLI::App& command, RenderOptions& options);

/// The settings of one picture or sequence. Without --frames a sequence has the frames on disk.
/// Throws `UsageError` for a text that its option does not accept, and for a file that is missing;
/// `FileError` for a picture whose size a box needs.
Render::RenderSettings settingsFrom(const RenderOptions& given);

/// Prints the frames that were found on disk.
void printFrames(const RenderOptions& options, const Render::RenderSettings& settings);

}  // namespace Tesseret::Command
