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
#include "command/SheetTiles.h"
#include "command/ShotOptions.h"
#include "command/VariationSheet.h"
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
With --variations the output may be left out.

Examples:
  tesseret fill --source photo.png --matte hole.png --output clean.png
  tesseret fill photo.png hole.png clean.png --effort best
  tesseret fill photo.png hole.png --variations 12 --sheet sheet.png
  tesseret fill photo.png hole.png clean.png --pick 7
  tesseret fill a.png b.png c.png --matte "mattes/{name}.png" --output "clean/{name}.png"
  tesseret fill --source plate.####.exr --matte hole.png --frames 1001-1100 \
      --output clean.####.exr temporalConsistancy=on)";

struct CommandOptions {
    RenderOptions render;
    std::string effort = "normal";
    std::filesystem::path saveParameters;  ///< empty: none
    std::optional<int> chooseAt;
    std::size_t variations = 0, pick = 0;  ///< 0: none
    std::filesystem::path sheet;
    int tileSize = kUsualTile;
    bool quiet = false, verbose = false;
};

void addVariationOptions(CLI::App& command, CommandOptions& options)
{
    command
        .add_option("--variations", options.variations,
                    "Shows the best fills that differ visibly on a contact sheet, this many at "
                    "most, 2 to 64: those of the largest area that trials are made for; --areas "
                    "chooses another. The parameters of each are written beside the sheet: "
                    "sheet.1.json and so on")
        ->check(CLI::Range(2, 64))
        ->type_name("COUNT");
    addSheetOptions(command, options.sheet, options.tileSize);
    command
        .add_option("--pick", options.pick,
                    "Renders the variation of this number, 1 to 64, not the best")
        ->check(CLI::Range(1, 64))
        ->type_name("NUMBER");
}

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
    addVariationOptions(command, options);
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

/// Before any work is done.
void check(const CommandOptions& options, const Render::RenderSettings& settings)
{
    const auto require = [](bool isGiven, const char* text) {
        if (!isGiven) throw Render::UsageError(text);
    };
    require(options.sheet.empty() || options.variations > 0, "--sheet requires --variations");
    require(options.variations == 0 || options.pick > 0 || !options.sheet.empty(),
            "--variations requires --sheet");
    require(!settings.output.empty() || options.pick == 0, "--pick requires --output");
    require(!settings.output.empty() || !options.sheet.empty(), "--output is required");
    if (options.variations > 0 && options.pick > options.variations) {
        throw Render::UsageError("--pick " + std::to_string(options.pick) +
                                 ": is more than --variations");
    }
    if (options.sheet.empty()) return;
    checkSheet(options.sheet, Render::JobInputs(settings));
    for (std::size_t i = 1; i <= options.variations; ++i) {
        if (settings.parameterFile.lexically_normal() ==
            parametersBeside(options.sheet, i).lexically_normal()) {
            throw Render::UsageError(settings.parameterFile.string() +
                                     ": would be overwritten with the parameters of a variation");
        }
    }
}

/// The plan with the variation that was asked for in place of the best.
Fill::FillPlan picked(Fill::FillPlan plan, std::size_t number)
{
    if (number == 0) return plan;
    if (plan.wasEnded) throw Render::Interrupted("interrupted before the variations were known");
    const std::size_t count = plan.variations.size();
    if (number > count) {
        throw Render::UsageError("--pick " + std::to_string(number) + ": there " +
                                 (count == 1 ? "is " : "are ") + std::to_string(count) +
                                 (count == 1 ? " variation" : " variations"));
    }
    plan.settings = plan.variations[number - 1].settings;
    plan.steps = plan.variations[number - 1].steps;
    return plan;
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

/// An error where the sheet is all that was asked for.
void tellNoVariations(const CommandOptions& options, const Fill::FillPlan& plan)
{
    const bool isAll = options.render.settings.output.empty();
    if (plan.wasEnded && isAll) throw Render::Interrupted("interrupted");
    const std::string reason =
        plan.wasEnded ? "the search was ended"
        : plan.areas.empty()
            ? "the matte masks nothing"
            : "small spots are filled without trials; --areas 1 makes trials for one";
    if (isAll) throw Render::UsageError("no sheet: " + reason);
    std::fprintf(stderr, "tesseret: note: no sheet: %s\n", reason.c_str());
}

/// Writes the sheet, and says so.
void showVariations(const CommandOptions& options, const Fill::FillPlan& plan,
                    Render::RenderJob& job)
{
    const std::size_t count = plan.variations.size();
    if (count == 0) return tellNoVariations(options, plan);
    if (count < options.variations) {
        std::fprintf(stderr,
                     "tesseret: note: %zu of %zu variations: no more trials differ visibly\n",
                     count, options.variations);
    }
    writeVariations(options.sheet, options.tileSize, plan, job);
    if (options.quiet) return;
    std::printf("%s  %zu variations\n", options.sheet.c_str(), count);
    std::fflush(stdout);
}

void renderPlan(const CommandOptions& options, const Fill::FillPlan& plan, Render::RenderJob& job,
                RenderReporter& reporter, PictureReport* report)
{
    if (!options.render.settings.output.empty()) {
        reporter.begin(job);
        if (report != nullptr) report->begin(job);
        job.run();
        reporter.finish();
    }
    if (!options.sheet.empty()) showVariations(options, plan, job);
    if (!options.quiet && !options.render.settings.output.empty()) printCommand(plan, job);
}

int fill(const CommandOptions& options, PictureReport* report)
{
    const Render::RenderSettings settings = settingsFrom(options.render);
    if (!options.quiet) printFrames(options.render, settings);
    check(options, settings);
    if (options.render.dryRun) {
        const auto plan = dryRun(settings, "chosen by trials, effort " + options.effort);
        if (report != nullptr) report->planned(plan);
        return 0;
    }
    keepMemory();
    Files::useThreads(settings.threads);
    Render::catchInterrupts();
    SearchReporter search(options.quiet);
    Fill::FillPlan best =
        Fill::planFill(settings, effortFrom(options.effort), frameToChooseAt(options, settings),
                       search, std::max(options.variations, options.pick));
    search.report(best, options.pick);
    const Fill::FillPlan plan = picked(std::move(best), options.pick);
    if (report != nullptr) report->searched(plan);
    if (plan.wasEnded) Render::forgetInterrupts();
    RenderReporter reporter(options.quiet     ? Verbosity::Quiet
                            : options.verbose ? Verbosity::Verbose
                                              : Verbosity::Normal);
    Render::JobListeners listeners{&reporter, report};
    Render::RenderJob job(plan.settings, listeners);
    if (!options.saveParameters.empty()) save(options.saveParameters, plan, job.session());
    renderPlan(options, plan, job, reporter, report);
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
    addResumeOptions(*command, options->render);
    addOwnOptions(*command, *options);
    addReportOptions(*command, options->render);
    addPluginOptions(*command, options->render);
    command->callback([options, &action] {
        action = [options] {
            RenderOptions files = options->render;
            files.needsOutput = options->sheet.empty();
            return forEachSource(
                "fill", files, [&](const RenderOptions& single, PictureReport* report) {
                    CommandOptions own = *options;
                    own.render = single;
                    own.saveParameters = named(own.saveParameters, single.settings.source);
                    own.sheet = named(own.sheet, single.settings.source);
                    return fill(own, report);
                });
        };
    });
}

}  // namespace Tesseret::Command
