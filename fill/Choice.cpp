#include "fill/Choice.h"

#include <algorithm>
#include <array>

#include <nlohmann/json.hpp>

#include "effect/ParameterNames.h"
#include "render/ParameterFile.h"

namespace Tesseret::Fill {

using Render::RenderSettings;

namespace {

constexpr const char* kSteps = "steps";

struct Assignment {
    std::string name, value;
};

std::vector<Assignment> assignmentsOf(const Choice& choice)
{
    using Render::numberText;
    std::vector<Assignment> list{
        {Names::kBlockSize, std::to_string(choice.blockSize)},
        {Names::kOverlap, std::to_string(choice.overlap)},
        {Names::kBlendSize, std::to_string(choice.blendSize)},
        {Names::kNumSamples, std::to_string(choice.numSamples)},
        {Names::kSeed, std::to_string(choice.seed)},
        {Names::kPathWidth, numberText(choice.pathWidth)},
        {Names::kEdgeBlend, numberText(choice.edgeBlend)},
        {Names::kLuminanceMatch, choice.luminanceMatch ? "on" : "off"},
    };
    // The command turns it on by itself where it knows the texture to be a part of the source.
    if (!choice.parts.front().place.crops.empty()) {
        list.push_back({Names::kAvoidFillRegion, "on"});
    }
    return list;
}

Render::ViewBox viewBox(const OfxRectI& box, int top)
{
    return {double(box.x1), double(top - box.y2), double(box.x2), double(top - box.y1)};
}

}  // namespace

FixedValues::FixedValues(const RenderSettings& settings)
{
    for (const std::string& text : settings.parameters) {
        names_.push_back(text.substr(0, text.find('=')));
    }
    if (!settings.parameterFile.empty()) {
        const auto json = Render::readParameterFile(settings.parameterFile);
        const auto& holder = json.contains(kSteps) ? json[kSteps][0] : json;
        for (const auto& [name, value] : holder["parameters"].items()) names_.push_back(name);
    }
    fixesGrowth_ = settings.matteGrow > 0.0;
    fixesSide_ = settings.matteSide.has_value();
    const auto isGiven = [](const auto& file) { return !file.empty(); };
    const auto isCut = [](const auto& crop) { return crop.has_value(); };
    fixesPlace_ = settings.sampleBox || has(Names::kSampleCorner1) || has(Names::kSampleCorner2) ||
                  std::ranges::any_of(settings.textures, isGiven) ||
                  std::ranges::any_of(settings.textureCrops, isCut);
}

bool FixedValues::has(const std::string& parameter) const
{
    return std::ranges::find(names_, parameter) != names_.end();
}

std::vector<RenderSettings> settingsOf(const Choice& choice, const std::vector<std::size_t>& areas,
                                       int top, const RenderSettings& base,
                                       const FixedValues& fixed)
{
    std::vector<RenderSettings> steps;
    for (const Part& part : choice.parts) {
        RenderSettings settings = base;
        settings.areas = areas;
        settings.everyArea = true;
        if (part.side) settings.matteSide = part.side;
        if (settings.matteGrow == 0.0) settings.matteGrow = choice.grow;
        for (std::size_t i = 0; i < part.place.crops.size(); ++i) {
            settings.textureCrops.at(i) = viewBox(part.place.crops[i], top);
        }
        for (const Assignment& assignment : assignmentsOf(choice)) {
            if (fixed.has(assignment.name)) continue;
            settings.parameters.push_back(assignment.name + "=" + assignment.value);
        }
        steps.push_back(std::move(settings));
    }
    return steps;
}

std::vector<std::string> chosenParameters()
{
    std::vector<std::string> names{Names::kAvoidFillRegion, Names::kSampleCorner1,
                                   Names::kSampleCorner2};
    names.insert(names.end(), Names::kUseTextures.begin(), Names::kUseTextures.end());
    Choice any;
    any.parts.emplace_back();
    for (const Assignment& assignment : assignmentsOf(any)) names.push_back(assignment.name);
    return names;
}

std::string captionOf(const Choice& choice, const FixedValues& fixed)
{
    std::string text;
    for (const Part& part : choice.parts) Render::appendItem(text, " + ", part.place.name);
    const auto add = [&](const char* parameter, const std::string& words) {
        if (!fixed.has(parameter)) text += ", " + words;
    };
    add(Names::kBlockSize, "blocks of " + std::to_string(choice.blockSize));
    add(Names::kOverlap, "overlap " + std::to_string(choice.overlap));
    if (choice.blendSize > 0) add(Names::kBlendSize, "blend " + std::to_string(choice.blendSize));
    add(Names::kNumSamples, std::to_string(choice.numSamples) + " samples");
    if (choice.luminanceMatch) add(Names::kLuminanceMatch, "luminance match");
    add(Names::kSeed, "seed " + std::to_string(choice.seed));
    return text;
}

}  // namespace Tesseret::Fill
