#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "render/FillRegion.h"
#include "render/FrameSource.h"
#include "render/JobInputs.h"
#include "render/PluginSession.h"
#include "render/RenderSettings.h"

namespace Tesseret::Render {

struct ReadyInstance {
    std::unique_ptr<Host::Instance> instance;
    std::map<std::string, std::shared_ptr<FrameSource>> clips;  ///< by name; connected clips only
};

/// Makes identical instances that are ready to render, from settings and files.
class InstanceSetup {
public:
    /// Chooses the context and the parameter values: the given ones, those implied by options and
    /// files (a matte is filled from, a texture is used), and the sample box. Throws `UsageError`.
    /// Session, inputs and the instances' listener, which may be null, outlive the object.
    InstanceSetup(PluginSession& session, const RenderSettings& settings, const JobInputs& inputs,
                  Depth depth, Host::InstanceListener* listener = nullptr);

    /// The same with other values; missing ones are the plug-in's defaults. Throws `UsageError`
    /// when the sample box does not lie in the textures.
    InstanceSetup with(ParameterValues values) const;

    /// Makes an instance, connects its clips and sets its parameters. Throws `UsageError`.
    ReadyInstance make() const;

    const JobInputs& inputs() const { return inputs_; }
    /// The short name.
    const std::string& context() const { return context_; }
    /// The values of all parameters, defaults included.
    ParameterValues values() const;
    const FillRegion& fillRegion() const { return fillRegion_; }
    /// Whether an instance repeats the blocks of one frame in the next.
    bool repeatsBlocks() const { return repeatsBlocks_; }
    /// The part of the source that blocks are taken from, in pixels; none when they come from a
    /// texture or keep clear of the region to fill.
    const std::optional<OfxRectI>& boxInSource() const { return boxInSource_; }

    /// How far beyond the box of a matte a fill can change pixels, in pixels at full size; nullopt
    /// where that is not known.
    std::optional<double> fillReach() const;

private:
    void adopt(ParameterValues values);

    PluginSession& session_;
    const JobInputs& inputs_;
    Depth depth_;
    Host::InstanceListener* listener_;
    std::string context_;
    ParameterValues values_;
    FillRegion fillRegion_;
    bool repeatsBlocks_ = false;
    std::optional<OfxRectI> boxInSource_;
};

}  // namespace Tesseret::Render
