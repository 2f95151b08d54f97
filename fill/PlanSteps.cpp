#include "fill/PlanSteps.h"

#include <utility>

#include <nlohmann/json.hpp>

namespace Tesseret::Fill {

using Render::FillStep;
using Render::RenderSettings;

void PlanSteps::add(const Choice& choice, std::vector<std::size_t> areas)
{
    choices_.push_back({choice, std::move(areas)});
}

PlanSteps::Steps PlanSteps::allSteps() const
{
    Steps all;
    for (const AreasChoice& one : choices_) {
        for (RenderSettings& step :
             settingsOf(one.choice, one.areas, job_.top(), job_.base, job_.fixed)) {
            all.push_back(std::move(step));
        }
    }
    return all;
}

std::vector<FillStep> PlanSteps::toSave(const Steps& steps) const
{
    std::vector<FillStep> saved;
    for (const RenderSettings& step : steps) {
        const Render::JobInputs inputs = job_.inputs.withCrops(step);
        saved.push_back(
            {step, Render::InstanceSetup(job_.session, step, inputs, job_.depth).values()});
    }
    return saved;
}

RenderSettings PlanSteps::listed(const std::vector<FillStep>& saved) const
{
    RenderSettings settings = job_.base;
    settings.areas.clear();
    settings.everyArea = true;
    settings.matteSide.reset();
    settings.textureCrops = {};
    settings.sampleBox.reset();
    settings.parameters.clear();
    const Host::ContextDescription& description = job_.session.describe(kContext);
    settings.parameterFile = Render::stepsJson(plugin(), description, saved).dump();
    return settings;
}

PlannedFill PlanSteps::planned(std::size_t areas) const
{
    Steps steps = allSteps();
    // One step for all areas needs no list of them.
    if (steps.size() == 1 && steps.front().areas.size() == areas) {
        steps.front().areas = job_.base.areas;
        steps.front().everyArea = job_.base.everyArea;
    }
    std::vector<FillStep> saved = toSave(steps);
    if (steps.empty()) return {job_.base, {}};  // the matte masks nothing
    if (steps.size() == 1) return {steps.front(), std::move(saved)};
    RenderSettings settings = listed(saved);
    return {std::move(settings), std::move(saved)};
}

}  // namespace Tesseret::Fill
