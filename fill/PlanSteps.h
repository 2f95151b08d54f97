#pragma once

#include <string>
#include <vector>

#include "fill/Trials.h"

namespace Tesseret::Fill {

/// What is rendered, and the same to be saved.
struct PlannedFill {
    Render::RenderSettings settings;
    std::vector<Render::FillStep> steps;
};

/// The choices for the areas of a matte, in the order in which they are filled, as settings.
class PlanSteps {
public:
    /// The job outlives the object.
    explicit PlanSteps(const TrialJob& job) : job_(job) {}

    void add(const Choice& choice, std::vector<std::size_t> areas);
    std::size_t count() const { return choices_.size(); }
    /// Another choice for the areas of the one at a place.
    void replace(std::size_t place, const Choice& choice) { choices_[place].choice = choice; }

    /// `areas`: how many the matte has. One step becomes the settings themselves, several a list.
    PlannedFill planned(std::size_t areas) const;

    std::string plugin() const { return job_.session.effect().description().identifier; }
    static constexpr const char* kContext = "General";

private:
    using Steps = std::vector<Render::RenderSettings>;
    struct AreasChoice {
        Choice choice;
        std::vector<std::size_t> areas;
    };

    Steps allSteps() const;
    std::vector<Render::FillStep> toSave(const Steps& steps) const;
    Render::RenderSettings listed(const std::vector<Render::FillStep>& saved) const;

    const TrialJob& job_;
    std::vector<AreasChoice> choices_;
};

}  // namespace Tesseret::Fill
