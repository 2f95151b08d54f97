#include "command/WedgeCommand.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "command/ProcessMemory.h"
#include "command/RenderOptions.h"
#include "command/SheetTiles.h"
#include "command/WedgeAxes.h"
#include "command/WedgeJob.h"
#include "files/FileThreads.h"
#include "render/Interrupt.h"
#include "render/ParameterText.h"

namespace Tesseret::Command {

namespace {

constexpr const char* kFooter =
    R"(Parameters with several values are the axes of the sheet: the first goes across, the
second down, the third makes groups. Values are lists (30,50,80), ranges (1-4, or
0.5-2x0.5 in steps of 0.5), names or numbers of choices, on,off. Up to three axes and
200 pictures. The labels are what "tesseret render" takes as name=value. With a matte
the pictures show its areas, else the whole source.

Examples:
  tesseret wedge --source photo.png --matte hole.png --sheet sheet.png seed=1-6
  tesseret wedge --source photo.png --matte hole.png --sheet sheet.png \
      blockSize=30,60,120 overlap=10,20,30 numSamples=50
  tesseret wedge --source wall.png --sheet sheet.png --tile-size 300 \
      blockSize=30,60 seed=1-3 luminanceMatch=off,on)";

struct CommandOptions {
    RenderOptions render;
    std::filesystem::path sheet;
    int tileSize = kUsualTile;
    bool quiet = false;
};

void addOwnOptions(CLI::App& command, CommandOptions& options)
{
    addSheetOptions(command, options.sheet, options.tileSize)->required();
    command
        .add_option("--window", options.render.window,
                    "Part of the source to render: x1,y1,x2,y2 in pixels from the upper left "
                    "corner, y downwards")
        ->type_name("BOX");
    command
        .add_option("--render-scale", options.render.settings.renderScale,
                    "Renders smaller or larger, like a proxy in a host: 0.5 is half")
        ->check(CLI::Range(0.01, 16.0))
        ->type_name("FACTOR");
    command.add_flag("-q,--quiet", options.quiet, "Only notes, warnings and errors");
}

/// Renders the tiles and lays them out.
class Wedge {
public:
    Wedge(WedgeJob& job, WedgeReporter& reporter, WedgeValues values, int tileSize)
        : job_(job),
          reporter_(reporter),
          values_(std::move(values)),
          part_(job.part(assignmentsOf({0, 0, 0}))),
          cutter_(part_, job.inputs().source().pixelAspectRatio, tileSize)
    {}

    Sheet::ContactSheet sheet();

private:
    using Place = std::array<std::size_t, kMostAxes>;  ///< the value of each axis

    std::size_t length(std::size_t axis) const
    {
        return axis < values_.axes.size() ? values_.axes[axis].values.size() : 1;
    }
    std::vector<std::string> assignmentsOf(const Place& place) const;
    std::string labelOf(const Place& place) const;
    Sheet::Tile tile(const Place& place, bool hasTitle);
    Sheet::Group row();
    Sheet::Group grid(std::size_t group);

    WedgeJob& job_;
    WedgeReporter& reporter_;
    WedgeValues values_;
    OfxRectI part_;
    TileCutter cutter_;
    std::size_t done_ = 0;
};

std::vector<std::string> Wedge::assignmentsOf(const Place& place) const
{
    std::vector<std::string> all = values_.fixed;
    for (std::size_t axis = 0; axis < values_.axes.size(); ++axis) {
        all.push_back(values_.axes[axis].assignment(place.at(axis)));
    }
    return all;
}

std::string Wedge::labelOf(const Place& place) const
{
    std::string label;
    for (std::size_t axis = 0; axis < values_.axes.size(); ++axis) {
        Render::appendItem(label, " ", values_.axes[axis].assignment(place.at(axis)));
    }
    return label;
}

Sheet::Tile Wedge::tile(const Place& place, bool hasTitle)
{
    const std::string label = labelOf(place);
    reporter_.began(done_++, values_.tiles(), label);
    return {cutter_.cut(job_.render(assignmentsOf(place), part_)), hasTitle ? label : "", ""};
}

/// One axis, in as many rows as make a good sheet.
Sheet::Group Wedge::row()
{
    Sheet::Group group;
    for (std::size_t i = 0; i < length(0); ++i) group.tiles.push_back(tile({i, 0, 0}, true));
    group.columns = Sheet::columnsFor(group.tiles.size(), cutter_.width(), cutter_.height());
    return group;
}

Sheet::Group Wedge::grid(std::size_t number)
{
    Sheet::Group group;
    if (values_.axes.size() > 2) group.heading = values_.axes[2].assignment(number);
    group.columns = length(0);
    for (std::size_t i = 0; i < length(0); ++i) {
        group.columnNames.push_back(values_.axes[0].assignment(i));
    }
    for (std::size_t j = 0; j < length(1); ++j) {
        group.rowNames.push_back(values_.axes[1].assignment(j));
        for (std::size_t i = 0; i < length(0); ++i) {
            group.tiles.push_back(tile({i, j, number}, false));
        }
    }
    return group;
}

Sheet::ContactSheet Wedge::sheet()
{
    Sheet::ContactSheet sheet;
    sheet.title = job_.inputs().source().file.filename().string();
    for (const std::string& fixed : values_.fixed) sheet.title += "  " + fixed;
    if (values_.axes.size() == 1) {
        sheet.groups.push_back(row());
        return sheet;
    }
    for (std::size_t number = 0; number < length(2); ++number) {
        sheet.groups.push_back(grid(number));
    }
    return sheet;
}

int wedge(const CommandOptions& options)
{
    Render::RenderSettings settings = settingsFrom(options.render);
    const std::vector<std::string> assignments = std::exchange(settings.parameters, {});
    keepMemory();
    Files::useThreads(settings.threads);
    Render::catchInterrupts();
    WedgeReporter reporter(options.quiet);
    WedgeJob job(std::move(settings), reporter);
    checkSheet(options.sheet, job.inputs());
    WedgeValues values = wedgeValues(assignments, job.description());
    const std::size_t count = values.tiles();
    const Sheet::ContactSheet sheet =
        Wedge(job, reporter, std::move(values), options.tileSize).sheet();
    reporter.finish();
    writeSheet(options.sheet, sheet);
    if (!options.quiet) std::printf("%s  %zu pictures\n", options.sheet.c_str(), count);
    std::fflush(stdout);
    return 0;
}

}  // namespace

void addWedgeCommand(CLI::App& app, Action& action)
{
    const auto options = std::make_shared<CommandOptions>();
    CLI::App* const command =
        app.add_subcommand("wedge", "Shows what parameters do: a contact sheet of chosen values");
    command->footer(kFooter);
    addFileOptions(*command, options->render, /*isRender=*/true);
    for (const char* name : {"--output", "--compression"}) {
        command->remove_option(command->get_option(name));
    }
    addMatteOptions(*command, options->render);
    options->render.files = FilesWanted::Wedge;
    addOwnOptions(*command, *options);
    addPluginOptions(*command, options->render);
    command->callback([options, &action] { action = [options] { return wedge(*options); }; });
}

}  // namespace Tesseret::Command
