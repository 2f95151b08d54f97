#include "command/RenderOptions.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "command/BoxText.h"
#include "command/FileWords.h"
#include "effect/ParameterNames.h"
#include "files/FileFormat.h"
#include "files/PictureReader.h"
#include "files/Sequence.h"
#include "files/StandardStreams.h"
#include "render/JobError.h"

namespace Tesseret::Command {

namespace {

/// The areas by their numbers from 0; none for all and first.
std::vector<std::size_t> areasFrom(const std::string& text)
{
    if (text == "all" || text == "first") return {};
    try {
        std::vector<std::size_t> areas;
        for (const int number : Files::parseFrames(text)) {
            if (number < 1) throw std::invalid_argument(text);
            areas.push_back(static_cast<std::size_t>(number) - 1);
        }
        return areas;
    } catch (const std::invalid_argument&) {
        throw Render::UsageError("--areas " + text +
                                 ": expected all, first, or numbers from 1 as in 1,3-5");
    }
}

/// The frames on disk of the first file that is a sequence; none for stills.
std::vector<int> framesOnDisk(const Render::RenderSettings& settings)
{
    std::vector<std::filesystem::path> files{settings.source, settings.matte};
    files.insert(files.end(), settings.textures.begin(), settings.textures.end());
    for (const std::filesystem::path& file : files) {
        const Files::SequencePattern pattern(file);
        if (!pattern.isSequence()) continue;
        std::vector<int> frames = pattern.found();
        if (!frames.empty()) return frames;
        throw Render::UsageError(file.string() + ": there is no frame of this sequence on disk");
    }
    return {};
}

/// The picture's size as its header has it, in a sequence the first frame's.
OfxRectI sizeOf(const std::filesystem::path& file, const Render::RenderSettings& settings,
                const std::string& option)
{
    if (file.empty()) throw Render::UsageError(option + ": per cent require --source");
    const int frame = settings.frames.empty() ? 0 : settings.frames.front();
    return Files::readInfo(Files::SequencePattern(file).file(frame)).displayWindow;
}

/// The picture that a sample box lies over: the first texture, or the source.
const std::filesystem::path& sampledFile(const RenderOptions& options)
{
    const Render::RenderSettings& settings = options.settings;
    for (std::size_t i = 0; i < settings.textures.size(); ++i) {
        if (!settings.textures[i].empty()) return settings.textures[i];
        if (!options.textureCrops[i].empty()) break;
    }
    return settings.source;
}

void takeBoxes(const RenderOptions& options, Render::RenderSettings& settings)
{
    const auto box = [&](const std::string& text, const std::string& option,
                         const std::filesystem::path& file) {
        return boxFrom(text, option, [&] { return sizeOf(file, settings, option); });
    };
    settings.window = box(options.window, "--window", settings.source);
    settings.sampleBox = box(options.sampleBox, "--sample-box", sampledFile(options));
    for (std::size_t i = 0; i < settings.textureCrops.size(); ++i) {
        const std::filesystem::path& file = settings.textures[i];
        settings.textureCrops[i] =
            box(options.textureCrops[i], "--texture" + std::to_string(i + 1) + "-crop",
                file.empty() ? settings.source : file);
    }
}

/// Without a format of its own, standard output gets the source's.
void takeStandardStreams(Render::RenderSettings& settings)
{
    std::vector<std::filesystem::path> files{settings.source, settings.matte};
    files.insert(files.end(), settings.textures.begin(), settings.textures.end());
    if (std::ranges::count_if(files, Files::isStandardInput) > 1) {
        throw Render::UsageError("standard input can be only one of the pictures");
    }
    if (settings.output != "-") return;
    const int frame = settings.frames.empty() ? 0 : settings.frames.front();
    const auto first = Files::SequencePattern(settings.source).file(frame);
    settings.output = Files::standardOutputIn(Files::formatByContent(first));
}

/// The choices that fill from a matte, by name or by number.
void checkMatteGiven(const Render::RenderSettings& settings)
{
    if (!settings.matte.empty()) return;
    for (const std::string& word : settings.parameters) {
        const std::string start = std::string(Names::kFillRegion) + "=";
        if (!word.starts_with(start)) continue;
        const std::string value = word.substr(start.size());
        for (const char* const choice : {Names::kMatteAlpha, Names::kMatteInvertedAlpha}) {
            const auto place = std::ranges::find(Names::kFillRegions, std::string_view(choice));
            const auto number = std::to_string(place - Names::kFillRegions.begin());
            if (value != choice && value != number) continue;
            throw Render::UsageError(std::string(Names::kFillRegion) + "=\"" + choice +
                                     "\" needs a matte: give it with --matte FILE");
        }
    }
}

}  // namespace

void addFileOptions(CLI::App& command, RenderOptions& options, bool isRender)
{
    Render::RenderSettings& settings = options.settings;
    options.files = isRender ? FilesWanted::Render : FilesWanted::View;
    command
        .add_option("-s,--source", settings.source,
                    "Source picture; the first word without a name does the same")
        ->type_name("FILE");
    command
        .add_option("-o,--output", settings.output,
                    "File to write, also as the last word without a name; its extension selects "
                    "the format. A folder keeps the source's name; {name} stands for it without "
                    "its extension")
        ->type_name("FILE");
    for (std::size_t i = 0; i < settings.textures.size(); ++i) {
        const std::string number = std::to_string(i + 1);
        command
            .add_option("--texture" + number, settings.textures[i],
                        "Picture to take blocks from instead of the source; selects the context "
                        "General and useTexture" +
                            number + "=true")
            ->type_name("FILE");
    }
    for (std::size_t i = 0; i < settings.textures.size(); ++i) {
        const std::string number = std::to_string(i + 1);
        command
            .add_option("--texture" + number + "-crop", options.textureCrops[i],
                        "Uses only this part of the texture, or without --texture" + number +
                            " this part of the source, as a texture: x1,y1,x2,y2 in pixels from "
                            "the upper left corner, y downwards, or in per cent")
            ->type_name("BOX");
    }
    command
        .add_option(
            "-f,--frames", options.frames,
            "Frames of a sequence: 1001-1100, 1-9x2, 1,5,8 (default: all on disk). File names have "
            "####, @@@@ or %04d in place of the number; a file without it is used for every "
            "frame")
        ->type_name("RANGE");
    command
        .add_option("--compression", settings.compression,
                    "PNG: level 0 to 9 (default: a fast one); JPEG: quality 1 to 100 (default "
                    "95); TIFF: none, lzw, zip, packbits; EXR: none, rle, zip, zips, piz, pxr24, "
                    "b44, b44a, dwaa, dwab (default: the source's)")
        ->type_name("VALUE");
}

void addReportOptions(CLI::App& command, RenderOptions& options)
{
    command.add_flag("--dry-run", options.dryRun,
                     "Prints the areas, blocks, frames, image memory and files of the render; "
                     "renders and writes nothing");
    command.add_flag("--json", options.json,
                     "Prints a report as JSON on standard output, and everything else on "
                     "standard error");
}

void addMatteOptions(CLI::App& command, RenderOptions& options)
{
    Render::RenderSettings& settings = options.settings;
    auto* const matte =
        command
            .add_option(
                "-m,--matte", settings.matte,
                "Region to fill, white on black or as alpha, as large as the source; selects "
                "the context General and fillRegion=\"Matte->Alpha\"")
            ->type_name("FILE");
    command
        .add_flag("--matte-inverted", options.matteInverted,
                  "Fills where the matte is black or transparent: "
                  "fillRegion=\"Matte->Inverted Alpha\"")
        ->needs(matte);
    command
        .add_option("--areas", options.areas,
                    "Which separate areas of the matte to fill: all, one after another, first, or "
                    "numbers as in 1,3-5, which count from the lowest row up (default: all)")
        ->needs(matte)
        ->type_name("WHICH:{all,first}");
    command
        .add_option("--matte-side", options.matteSide,
                    "Fills only one side of a line: x,y,angle, a point in pixels from the upper "
                    "left corner and the direction from it to that side in degrees, 0 to the "
                    "right and 90 downwards")
        ->needs(matte)
        ->type_name("LINE");
    command
        .add_option("--matte-window", options.matteWindow,
                    "How much of the matte the plug-in receives: area, the box round the area to "
                    "fill, or full (default: area)")
        ->needs(matte)
        ->check(CLI::IsMember({"area", "full"}))
        ->type_name("WHICH");
    command
        .add_option("--matte-grow", settings.matteGrow,
                    "Widens the region to fill by this many pixels first, 0 to 1000")
        ->needs(matte)
        ->check(CLI::Range(0.0, 1000.0))
        ->type_name("PIXELS");
    command
        .add_flag("--follow", settings.followsMatte,
                  "With temporalConsistancy=on: moves the recorded blocks by whole pixels with "
                  "the area that they fill")
        ->needs(matte);
    auto* const alpha =
        command
            .add_flag("--fill-alpha", options.fillAlpha,
                      "Fills where the source's own alpha is set; selects the context General and "
                      "fillRegion=\"Source->Alpha\"")
            ->excludes(matte);
    command
        .add_flag("--fill-alpha-inverted", options.fillAlphaInverted,
                  "Fills where the source is transparent: fillRegion=\"Source->Inverted Alpha\"")
        ->excludes(matte)
        ->excludes(alpha);
}

void addPictureOptions(CLI::App& command, RenderOptions& options)
{
    Render::RenderSettings& settings = options.settings;
    command
        .add_option("--window", options.window,
                    "Part of the source to render: x1,y1,x2,y2 in pixels from the upper left "
                    "corner, y downwards")
        ->type_name("BOX");
    command
        .add_option("--render-scale", settings.renderScale,
                    "Renders smaller or larger, like a proxy in a host: 0.5 is half")
        ->check(CLI::Range(0.01, 16.0))
        ->type_name("FACTOR");
    command
        .add_option("--host-like", settings.hostLike,
                    "Renders as in another host, with its ways and the name it gives: \"tesseret "
                    "hosts\" lists them")
        ->type_name("NAME");
}

void addPluginOptions(CLI::App& command, RenderOptions& options)
{
    Render::RenderSettings& settings = options.settings;
    command
        .add_option("--sample-box", options.sampleBox,
                    "Box that blocks are taken from: x1,y1,x2,y2 in pixels from the upper left "
                    "corner, y downwards, of the first texture, or of the source when no texture "
                    "is given; or in per cent of that picture: 10%,10%,50%,90%")
        ->type_name("BOX");
    command
        .add_option("--depth", options.depth,
                    "Depth of the render and of the result: byte, short or float (default: the "
                    "source's own)")
        ->check(CLI::IsMember({"byte", "short", "float"}))
        ->type_name("DEPTH");
    command
        .add_option("--context", settings.context,
                    "Filter or General (default: Filter, or General where the files need it)")
        ->type_name("NAME");
    command
        .add_option("--threads", settings.threads,
                    "Worker threads (default: one for each processor that the process may use, by "
                    "its affinity, its control group and SLURM_CPUS_PER_TASK in a Slurm job)")
        ->check(CLI::Range(1, 1024))
        ->type_name("COUNT");
    command
        .add_option("--plugin", settings.plugin,
                    "OFX bundle or library (default: the one built with this program, else from "
                    "OFX_PLUGIN_PATH or /usr/OFX/Plugins)")
        ->type_name("FILE");
    command
        .add_option("--parameters", settings.parameterFile,
                    "JSON file with values for the plug-in's parameters, or such JSON itself; "
                    "options and name=value override it")
        ->type_name("FILE");
    command
        .add_option("parameters", settings.parameters,
                    "Values for the plug-in's parameters; words without \"=\" are files")
        ->type_name("name=value");
}

Render::RenderSettings settingsFrom(const RenderOptions& given)
{
    RenderOptions options = given;
    if (takeFileWords(options).size() > 1) {
        throw Render::UsageError("several sources: this takes one picture or sequence");
    }
    Render::RenderSettings settings = options.settings;
    settings.frames =
        options.frames.empty() ? framesOnDisk(settings) : Files::parseFrames(options.frames);
    if (options.matteInverted) settings.mask = Render::MaskOption::MatteInverted;
    if (options.fillAlpha) settings.mask = Render::MaskOption::Alpha;
    if (options.fillAlphaInverted) settings.mask = Render::MaskOption::AlphaInverted;
    if (std::isnan(settings.matteGrow)) throw Render::UsageError("--matte-grow: expected a number");
    settings.everyArea = options.areas != "first";
    settings.areas = areasFrom(options.areas);
    settings.matteSide = sideFrom(options.matteSide);
    settings.cropsAreas = options.matteWindow == "area";
    if (options.depth == "byte") settings.depth = Depth::Byte;
    if (options.depth == "short") settings.depth = Depth::Short;
    if (options.depth == "float") settings.depth = Depth::Float;
    takeStandardStreams(settings);
    if (options.files == FilesWanted::Render) checkMatteGiven(settings);
    takeBoxes(options, settings);
    return settings;
}

void printFrames(const RenderOptions& options, const Render::RenderSettings& settings)
{
    if (!options.frames.empty() || settings.frames.empty()) return;
    std::printf("frames %s\n", Files::framesText(settings.frames).c_str());
    std::fflush(stdout);
}

}  // namespace Tesseret::Command
