#include "command/FillCommand.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "command/DryRun.h"
#include "command/FileWords.h"
#include "command/ManyStills.h"
#include "command/ProcessMemory.h"
#include "command/RenderOptions.h"
#include "command/RenderReporter.h"
#include "command/SearchReporter.h"
#include "files/FileThreads.h"
#include "fill/FillPlan.h"
#include "render/Interrupt.h"
#include "render/JobError.h"
#include "render/ParameterFile.h"
#include "render/RenderJob.h"
#include "viewer/model/CommandText.h"

namespace Tesseret::Command {

namespace {

constexpr const char* kFooter =
    R"(Renders trials of each area on its surroundings, keeps the settings whose fill shows
least, and prints them as a "tesseret render" command. What is given stays as it is:
name=value, --sample-box, --texture1, --matte-grow; the rest is chosen around it.
Ctrl-C ends the search and writes the best fill found so far.

Examples:
  tesseret fill --source photo.png --matte hole.png --output clean.png
  tesseret fill photo.png hole.png clean.png --effort best
  tesseret fill a.png b.png c.png --matte "mattes/{name}.png" --output "clean/{name}.png"
  tesseret fill --source plate.####.exr --matte hole.png --frames 1001-1100 \
      --output clean.####.exr temporalConsistancy=on)";

struct CommandOptions {
    RenderOptions render;
    std::string effort = "normal";
    std::filesystem::path saveParameters;  ///< empty: none
    std::optional<int> chooseAt;
    bool quiet = false, verbose = false;
};

void addOwnOptions(CLI::App& command, CommandOptions& options)
{
    command
        .add_option("--effort", options.effort,
                    "How many trials to render for each area: quick (8), normal (40) or best "
                    "(200); default: normal")
        ->check(CLI::IsMember({"quick", "normal", "best"}))
        ->type_name("EFFORT");
    command
        .add_option(
            "--save-parameters", options.saveParameters,
            "Writes what was chosen as JSON, which --parameters of \"tesseret render\" takes")
        ->type_name("FILE");
    command
        .add_option("--choose-at", options.chooseAt,
                    "Frame of a sequence to choose the settings on (default: the first); they are "
                    "used for all")
        ->type_name("FRAME");
    auto* const quiet =
        command.add_flag("-q,--quiet", options.quiet, "Only notes, warnings and errors");
    command
        .add_flag("-v,--verbose", options.verbose, "Time by stage, number of blocks, peak memory")
        ->excludes(quiet);
}

Fill::Effort effortFrom(const std::string& text)
{
    if (text == "quick") return Fill::Effort::Quick;
    return text == "best" ? Fill::Effort::Best : Fill::Effort::Normal;
}

int frameToChooseAt(const CommandOptions& options, const Render::RenderSettings& settings)
{
    if (settings.frames.empty()) {
        if (options.chooseAt)
            throw Render::UsageError("--choose-at is for sequences: give --frames");
        return 0;
    }
    const int frame = options.chooseAt.value_or(settings.frames.front());
    if (std::ranges::find(settings.frames, frame) == settings.frames.end()) {
        throw Render::UsageError("--choose-at " + std::to_string(frame) +
                                 ": is not one of the frames");
    }
    return frame;
}

void printCommand(const Fill::FillPlan& plan, Render::RenderJob& job)
{
    const std::string text = plan.steps.size() > 1
                                 ? Viewer::commandWithFile(plan.settings)
                                 : Viewer::commandText(plan.settings, job.setup(), job.session());
    std::printf("%s\n", text.c_str());
    std::fflush(stdout);
}

void save(const std::filesystem::path& file, const Fill::FillPlan& plan,
          Render::PluginSession& session)
{
    Render::writeJson(file,
                      Render::stepsJson(plan.plugin, session.describe(plan.context), plan.steps));
}

int fill(const CommandOptions& options, PictureReport* report)
{
    const Render::RenderSettings settings = settingsFrom(options.render);
    if (!options.quiet) printFrames(options.render, settings);
    if (options.render.dryRun) {
        const auto plan = dryRun(settings, "chosen by trials, effort " + options.effort);
        if (report != nullptr) report->planned(plan);
        return 0;
    }
    keepMemory();
    Files::useThreads(settings.threads);
    Render::catchInterrupts();
    SearchReporter search(options.quiet);
    const Fill::FillPlan plan = Fill::planFill(settings, effortFrom(options.effort),
                                               frameToChooseAt(options, settings), search);
    search.report(plan);
    if (report != nullptr) report->searched(plan);
    if (plan.wasEnded) Render::forgetInterrupts();
    RenderReporter reporter(options.quiet     ? Verbosity::Quiet
                            : options.verbose ? Verbosity::Verbose
                                              : Verbosity::Normal);
    Render::JobListeners listeners{&reporter, report};
    Render::RenderJob job(plan.settings, listeners);
    if (!options.saveParameters.empty()) save(options.saveParameters, plan, job.session());
    reporter.begin(job);
    if (report != nullptr) report->begin(job);
    job.run();
    reporter.finish();
    if (!options.quiet) printCommand(plan, job);
    return 0;
}

}  // namespace

void addFillCommand(CLI::App& app, Action& action)
{
    const auto options = std::make_shared<CommandOptions>();
    CLI::App* const command =
        app.add_subcommand("fill", "Fills a matte with settings that it finds by itself");
    command->footer(kFooter);
    addFileOptions(*command, options->render, /*isRender=*/true);
    addMatteOptions(*command, options->render);
    options->render.files = FilesWanted::Fill;
    for (const char* name : {"--fill-alpha", "--fill-alpha-inverted"}) {
        command->remove_option(command->get_option(name));
    }
    addOwnOptions(*command, *options);
    addReportOptions(*command, options->render);
    addPluginOptions(*command, options->render);
    command->callback([options, &action] {
        action = [options] {
            return forEachSource(
                "fill", options->render, [&](const RenderOptions& single, PictureReport* report) {
                    CommandOptions own = *options;
                    own.render = single;
                    own.saveParameters = named(own.saveParameters, single.settings.source);
                    return fill(own, report);
                });
        };
    });
}

}  // namespace Tesseret::Command
