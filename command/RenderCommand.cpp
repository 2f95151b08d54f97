#include "command/RenderCommand.h"

#include <filesystem>
#include <memory>
#include <optional>

#include "command/DryRun.h"
#include "command/FileWords.h"
#include "command/ManyStills.h"
#include "command/ProcessMemory.h"
#include "command/RenderOptions.h"
#include "command/RenderReporter.h"
#include "command/ShotOptions.h"
#include "files/FileThreads.h"
#include "render/DebugMaps.h"
#include "render/Interrupt.h"
#include "render/RenderJob.h"

namespace Tesseret::Command {

namespace {

constexpr const char* kFooter =
    R"(Parameters are set by name, choices by name or number; "tesseret describe"
lists them. File formats: PNG, JPEG, TIFF, DPX and EXR.

Examples:
  tesseret render --source plate.png --output out.png blockSize=64 seed=7
  tesseret render --source plate.png --matte hole.png --matte-grow 10 --output out.png
  tesseret render a.png b.png c.png out/ seed=7
  decode | tesseret render - png:- | encode
  tesseret render --source wall.exr --output out.exr --sample-box 100,80,600,500
  tesseret render --source sky.png --texture1 grass.png --sample-box 0,0,512,512 \
      --output out.png numSamples=50
  tesseret render --source plate.####.exr --frames 1001-1100 --output out.####.exr \
      temporalConsistancy=on)";

/// The options as written on the command line.
struct CommandOptions {
    RenderOptions render;
    std::filesystem::path debugMaps;  ///< empty: none
    bool quiet = false, verbose = false;
};

void addOwnOptions(CLI::App& command, CommandOptions& options)
{
    command
        .add_option("--debug-maps", options.debugMaps,
                    "Writes the maps of the fill into this folder as PNGs: the prepared mask, "
                    "the band and the path of its boundary, the blocks, the composite mask, the "
                    "luminance gain")
        ->type_name("DIR");
    auto* const quiet =
        command.add_flag("-q,--quiet", options.quiet, "Only notes, warnings and errors");
    command
        .add_flag("-v,--verbose", options.verbose, "Time by stage, number of blocks, peak memory")
        ->excludes(quiet);
}

int render(const CommandOptions& options, PictureReport* report)
{
    const Render::RenderSettings settings = settingsFrom(options.render);
    if (!options.quiet) printFrames(options.render, settings);
    if (options.render.dryRun) {
        const auto plan = dryRun(settings, "");
        if (report != nullptr) report->planned(plan);
        return 0;
    }
    keepMemory();
    Files::useThreads(settings.threads);
    Render::catchInterrupts();
    RenderReporter reporter(options.quiet     ? Verbosity::Quiet
                            : options.verbose ? Verbosity::Verbose
                                              : Verbosity::Normal);
    std::optional<Render::DebugMaps> maps;
    if (!options.debugMaps.empty()) maps.emplace(options.debugMaps, reporter);
    Render::JobListeners listeners{&reporter, report, maps ? &*maps : nullptr};
    Render::RenderJob job(settings, listeners);
    if (maps) maps->begin(job.inputs(), settings.renderScale);
    reporter.begin(job);
    if (report != nullptr) report->begin(job);
    job.run();
    reporter.finish();
    if (maps) maps->finish();
    return 0;
}

}  // namespace

void addRenderCommand(CLI::App& app, Action& action)
{
    const auto options = std::make_shared<CommandOptions>();
    CLI::App* const command = app.add_subcommand("render", "Renders a picture or a sequence");
    command->footer(kFooter);
    addFileOptions(*command, options->render, /*isRender=*/true);
    addMatteOptions(*command, options->render);
    addShotOptions(*command, options->render);
    addResumeOptions(*command, options->render);
    addPictureOptions(*command, options->render);
    addOwnOptions(*command, *options);
    addReportOptions(*command, options->render);
    addPluginOptions(*command, options->render);
    command->callback([options, &action] {
        action = [options] {
            return forEachSource("render", options->render,
                                 [&](const RenderOptions& single, PictureReport* report) {
                                     CommandOptions own = *options;
                                     own.render = single;
                                     own.debugMaps = named(own.debugMaps, single.settings.source);
                                     return render(own, report);
                                 });
        };
    });
}

}  // namespace Tesseret::Command
