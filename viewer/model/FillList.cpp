#include "viewer/model/FillList.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

#include <nlohmann/json.hpp>

#include "effect/ParameterNames.h"

namespace Tesseret::Viewer {

using Host::ParameterValue;
using Render::FillStep;
using Render::MatteAreas;
using Render::ParameterValues;
using Render::RenderSettings;

namespace {

bool isCut(const FillStep& step)
{
    return std::ranges::any_of(step.settings.textureCrops,
                               [](const auto& crop) { return crop.has_value(); });
}

}  // namespace

std::vector<FillList::Run> FillList::runsOf(const MatteAreas& matte, std::size_t area)
{
    std::vector<Run> runs;
    const OfxRectI& box = matte.box(area);
    for (int y = box.y1; y < box.y2; ++y) {
        for (int x = box.x1; x < box.x2; ++x) {
            if (matte.at(x, y) != area) continue;
            const bool goesOn = !runs.empty() && runs.back().y == y && runs.back().x2 == x;
            if (goesOn) {
                ++runs.back().x2;
            } else {
                runs.push_back({y, x, x + 1});
            }
        }
    }
    return runs;
}

FillList::FillList(const std::vector<FillStep>& steps, const MatteAreas* matte)
{
    auto places = std::make_shared<Places>();
    std::map<std::size_t, std::size_t> placeOf;  // by the area's number
    for (const FillStep& given : steps) {
        Step& step = steps_.emplace_back(Step{given, std::nullopt});
        if (given.settings.areas.empty() || matte == nullptr) continue;
        step.places.emplace();
        for (const std::size_t area : given.settings.areas) {
            if (area >= matte->count()) continue;
            const auto [found, isNew] = placeOf.emplace(area, places->size());
            if (isNew) places->push_back(runsOf(*matte, area));
            step.places->push_back(found->second);
        }
    }
    if (matte != nullptr) places_ = std::move(places);
}

FillList FillList::with(const std::string& name, const ParameterValue& value) const
{
    FillList other = *this;
    for (Step& step : other.steps_) step.step.values[name] = value;
    return other;
}

FillList FillList::withCrops(const RenderSettings& settings, const ParameterValues& values) const
{
    FillList other = *this;
    for (Step& step : other.steps_) {
        step.step.settings.textureCrops = settings.textureCrops;
        for (const auto& [name, value] : values) step.step.values[name] = value;
    }
    return other;
}

bool FillList::cutsTexture() const
{
    return isCut(steps_.front().step);
}

/// The one with which an area shares most pixels.
FillList::PlaceOfArea FillList::placesIn(const MatteAreas& matte) const
{
    std::vector<std::map<std::size_t, std::size_t>> shared(matte.count());
    for (std::size_t place = 0; place < places_->size(); ++place) {
        for (const Run& run : (*places_)[place]) {
            for (int x = run.x1; x < run.x2; ++x) {
                if (const auto area = matte.at(x, run.y)) ++shared[*area][place];
            }
        }
    }
    PlaceOfArea places;
    for (const auto& counts : shared) {
        const auto most =
            std::ranges::max_element(counts, {}, [](const auto& count) { return count.second; });
        places.push_back(most == counts.end() ? std::nullopt : std::optional(most->first));
    }
    return places;
}

std::vector<std::size_t> FillList::areasOf(const Step& step, const PlaceOfArea& places)
{
    std::vector<std::size_t> areas;
    for (std::size_t area = 0; area < places.size(); ++area) {
        const bool isIts =
            !step.places ||
            (places[area] && std::ranges::find(*step.places, *places[area]) != step.places->end());
        if (isIts) areas.push_back(area);
    }
    return areas;
}

std::vector<FillStep> FillList::stepsFor(const MatteAreas& matte, const FillStep* others) const
{
    std::vector<FillStep> steps;
    if (!places_) {
        for (const Step& step : steps_) steps.push_back(step.step);
        return steps;
    }
    const PlaceOfArea places = placesIn(matte);
    std::vector<bool> isNamed(matte.count(), false);
    for (const Step& step : steps_) {
        const std::vector<std::size_t> areas = areasOf(step, places);
        if (areas.empty()) continue;
        for (const std::size_t area : areas) isNamed[area] = true;
        steps.push_back(step.step);
        steps.back().settings.areas = areas;
    }
    if (steps.empty()) return steps;
    std::vector<std::size_t> rest;
    for (std::size_t area = 0; area < isNamed.size(); ++area) {
        if (!isNamed[area]) rest.push_back(area);
    }
    if (others != nullptr && !rest.empty()) {
        steps.push_back(*others);
        steps.back().settings.areas = std::move(rest);
        steps.back().settings.matteGrow = steps_.front().step.settings.matteGrow;
    }
    for (FillStep& step : steps) {  // a step for all areas needs no list of them
        if (step.settings.areas.size() == matte.count()) step.settings.areas.clear();
    }
    return steps;
}

std::string FillList::summary() const
{
    const std::size_t named = places_ ? places_->size() : steps_.size();
    const FillStep& first = steps_.front().step;
    if (steps_.size() > 1) {
        return named > 1 ? std::to_string(named) + " areas have settings of their own."
                         : "The area is filled in two parts, each with settings of its own.";
    }
    std::string text;
    if (isCut(first)) text = "Texture from near by";
    if (first.settings.matteGrow > 0.0) {
        text += (text.empty() ? "Matte " : ", matte ") +
                Render::numberText(first.settings.matteGrow) + " px wider";
    }
    return text.empty() ? text : text + ".";
}

std::vector<FillStep> stepsInForce(const FillList& list, const MatteAreas& matte,
                                   const RenderSettings& settings, ParameterValues panel)
{
    for (std::size_t i = 0; i < Names::kUseTextures.size(); ++i) {
        const bool hasTexture = !settings.textures[i].empty() || settings.textureCrops[i];
        const auto toggle = panel.find(Names::kUseTextures[i]);
        if (!hasTexture && toggle != panel.end()) toggle->second = 0;
    }
    const FillStep others{settings, std::move(panel)};
    const bool fillsOthers = settings.areas.empty() && settings.everyArea;
    return list.stepsFor(matte, fillsOthers ? &others : nullptr);
}

RenderSettings listSettings(const RenderSettings& base, const std::string& plugin,
                            const Host::ContextDescription& description,
                            const std::vector<FillStep>& steps)
{
    RenderSettings settings = base;
    settings.mask = Render::MaskOption::None;
    settings.areas.clear();
    settings.everyArea = true;
    settings.matteSide.reset();
    settings.matteGrow = 0.0;
    settings.textureCrops = {};
    settings.sampleBox.reset();
    settings.parameters.clear();
    settings.parameterFile = Render::stepsJson(plugin, description, steps).dump();
    // A texture that is given is used whatever the file says, unless it is turned off by name.
    for (std::size_t i = 0; i < Names::kUseTextures.size(); ++i) {
        const std::string name = Names::kUseTextures[i];
        const auto toggle = steps.front().values.find(name);
        if (settings.textures[i].empty() || toggle == steps.front().values.end()) continue;
        if (toggle->second == ParameterValue(0)) settings.parameters.push_back(name + "=false");
    }
    return settings;
}

}  // namespace Tesseret::Viewer
