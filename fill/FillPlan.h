#pragma once

/// Chooses the settings that fill a picture: runs trials for each area of its matte.

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fill/Effort.h"
#include "fill/Trials.h"
#include "render/RenderSettings.h"

namespace Tesseret::Fill {

/// What was chosen for an area, or for several small ones together.
struct AreaChoice {
    std::vector<std::size_t> areas;  ///< of the matte, from 0
    OfxRectI box;                    ///< round them, in pixels
    std::string caption;
    std::optional<Quality::Visibility> visibility;  ///< none where nothing was tried
};

/// One of the fills to pick from: that of one area, with the best fills of the others.
struct Variation {
    /// As those of the plan.
    Render::RenderSettings settings;
    std::vector<Render::FillStep> steps;
    std::string caption;
    Quality::Visibility visibility;
    /// The part of the picture that the area is judged in, with all areas filled that trials are
    /// made for.
    std::shared_ptr<const Picture> preview;
};

/// The area that the variations are of.
struct VariedArea {
    std::size_t number = 0;  ///< of the matte, from 0
    /// The part of the picture that the area is judged in, before its fill; bounds as the previews.
    std::shared_ptr<const Picture> source;
    /// Components::Alpha, Byte: 255 where the area is, else 0; its bounds are the area's box.
    std::shared_ptr<const Picture> pixels;
};

struct FillPlan {
    /// Renders as planned: the given settings with the chosen values, or with a list of steps.
    Render::RenderSettings settings;
    std::vector<Render::FillStep> steps;  ///< the same, to be saved
    std::string plugin, context;          ///< of the steps' values
    std::vector<AreaChoice> areas;        ///< in the order in which they are filled
    /// The best fills that differ visibly, the plan's own first, if asked for. Of one area, the
    /// largest that trials are made for.
    std::vector<Variation> variations;
    VariedArea varied;  ///< null pictures without variations
    std::size_t trials = 0;
    bool wasEnded = false;  ///< by the listener
};

/// Scores above this are told to the user.
inline constexpr double kPoorScore = 1.15;

/// The files and the plug-in of a caller that has them open already.
struct OpenFill {
    Render::PluginSession& session;
    const Render::JobInputs& inputs;
    Depth depth;
    Render::FramePictures pictures;              ///< of the frame, with its matte
    Host::InstanceListener* messages = nullptr;  ///< of the trials' instances; null: the host's
};

/// The frame is one of the settings' frames; 0 for a still. At most `variations` are kept; fewer
/// where fewer differ visibly, none where no trials are made or the search was ended. Throws as
/// `RenderJob` does.
FillPlan planFill(const Render::RenderSettings& settings, Effort effort, int frame,
                  SearchListener& listener, std::size_t variations = 0);
/// Likewise with what is open; the matte may be painted. On any thread: other threads may use other
/// instances of the session.
FillPlan planFill(const Render::RenderSettings& settings, Effort effort, int frame,
                  SearchListener& listener, const OpenFill& open, std::size_t variations = 0);

}  // namespace Tesseret::Fill
