#pragma once

/// A fill in steps as the state of a session: areas of the matte with settings of their own. An
/// area is known by its pixels, not by its number, so it keeps its settings while others are
/// painted or erased.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "render/FillSteps.h"
#include "render/MatteAreas.h"

namespace Tesseret::Viewer {

class FillList {
public:
    /// Steps that name areas of this matte by their numbers; one that names none is for every area.
    /// Without a matte, as for one that cannot be painted, the numbers stay.
    FillList(const std::vector<Render::FillStep>& steps, const Render::MatteAreas* matte);

    /// The same with one value for all steps.
    FillList with(const std::string& name, const Host::ParameterValue& value) const;
    /// The same with these values for all steps, whose textures are cut as these settings say.
    FillList withCrops(const Render::RenderSettings& settings,
                       const Render::ParameterValues& values) const;

    /// The steps for a matte as it is now; empty when none of the areas is left. What was painted
    /// since belongs to the area with which it shares most pixels. Areas that share none come last,
    /// filled as `others` says but with the first step's growth; they are left out where it is
    /// null.
    std::vector<Render::FillStep> stepsFor(const Render::MatteAreas& matte,
                                           const Render::FillStep* others) const;

    const Render::ParameterValues& firstValues() const { return steps_.front().step.values; }
    /// Whether the first step cuts a texture.
    bool cutsTexture() const;
    /// What differs from one setting for all, as a line for the user; empty when nothing does.
    std::string summary() const;

private:
    /// Pixels of a row from x1 up to x2.
    struct Run {
        int y, x1, x2;
    };
    struct Step {
        Render::FillStep step;
        std::optional<std::vector<std::size_t>> places;  ///< of places_; nullopt: every area
    };
    using Places = std::vector<std::vector<Run>>;

    using PlaceOfArea = std::vector<std::optional<std::size_t>>;  ///< nullopt: none of places_

    static std::vector<Run> runsOf(const Render::MatteAreas& matte, std::size_t area);
    PlaceOfArea placesIn(const Render::MatteAreas& matte) const;
    static std::vector<std::size_t> areasOf(const Step& step, const PlaceOfArea& places);

    std::vector<Step> steps_;
    std::shared_ptr<const Places> places_;  ///< null: the steps' numbers stay
};

/// The steps of a session's list for a matte. The values of its panel are for the areas that the
/// list does not name, unless its settings fill some areas only. Empty when none is left.
std::vector<Render::FillStep> stepsInForce(const FillList& list, const Render::MatteAreas& matte,
                                           const Render::RenderSettings& settings,
                                           Render::ParameterValues panel);

/// The settings of a render of these steps, to be given the files of `base`: their list as the text
/// of a parameter file.
Render::RenderSettings listSettings(const Render::RenderSettings& base, const std::string& plugin,
                                    const Host::ContextDescription& description,
                                    const std::vector<Render::FillStep>& steps);

}  // namespace Tesseret::Viewer
