#include "command/VariationSheet.h"

#include <cstdio>
#include <string>
#include <utility>

#include <nlohmann/json.hpp>

#include "command/SheetTiles.h"
#include "render/ParameterFile.h"

namespace Tesseret::Command {

namespace {

std::string scoreText(const Quality::Visibility& visibility)
{
    char text[32];
    std::snprintf(text, sizeof text, "score %.2f", visibility.total);
    return text;
}

Sheet::Group tilesOf(const Fill::FillPlan& plan, const TileCutter& cutter)
{
    Sheet::Group group;
    group.tiles.push_back({cutter.cutMarked(*plan.varied.source, *plan.varied.pixels), "source",
                           "what is marked is filled"});
    for (const Fill::Variation& variation : plan.variations) {
        group.tiles.push_back({cutter.cut(*variation.preview), std::to_string(group.tiles.size()),
                               scoreText(variation.visibility) + "  " + variation.caption});
    }
    group.columns = Sheet::columnsFor(group.tiles.size(), cutter.width(), cutter.height());
    return group;
}

}  // namespace

std::filesystem::path parametersBeside(const std::filesystem::path& sheet, std::size_t number)
{
    return std::filesystem::path(sheet).replace_extension("." + std::to_string(number) + ".json");
}

void writeVariations(const std::filesystem::path& sheet, int tileSize, const Fill::FillPlan& plan,
                     Render::RenderJob& job)
{
    const Picture& source = *plan.varied.source;
    const TileCutter cutter(surroundingsOf(plan.varied.pixels->bounds(), source.bounds()),
                            job.inputs().source().pixelAspectRatio, tileSize);
    const std::string name = job.inputs().source().file.filename().string();
    const std::string area = "area " + std::to_string(plan.varied.number + 1);
    Sheet::ContactSheet drawn{name + "  " + area, {}};
    drawn.groups.push_back(tilesOf(plan, cutter));
    writeSheet(sheet, drawn);
    const Host::ContextDescription& description = job.session().describe(plan.context);
    for (std::size_t i = 0; i < plan.variations.size(); ++i) {
        Render::writeJson(parametersBeside(sheet, i + 1),
                          Render::stepsJson(plan.plugin, description, plan.variations[i].steps));
    }
}

}  // namespace Tesseret::Command
