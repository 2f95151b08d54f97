#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "render/FrameRenderer.h"
#include "render/PluginMessages.h"
#include "render/StepList.h"
#include "viewer/model/PictureCache.h"
#include "viewer/model/RenderWatch.h"

namespace Tesseret::Viewer {

/// Renders requests one after another on instances of its own.
class RequestRenderer {
public:
    /// Checks the settings. Throws as `InstanceSetup` does. Session, pictures and watch outlive the
    /// object.
    RequestRenderer(Render::PluginSession& session, const Render::RenderSettings& settings,
                    PictureCache& pictures, RenderWatch& watch);

    /// Called before each request; later aborts apply to this one.
    void begin();
    /// From any thread.
    void abort();
    /// Null after an abort; the result holds any other error.
    std::shared_ptr<RenderResult> render(const ViewRequest& request);

private:
    /// Ready for all frames of a sequence with the same values and scale.
    struct Setup {
        Setup(const ViewRequest& given, Render::RenderSettings scaled, RenderWatch& watch)
            : request(given), settings(std::move(scaled)), warnings(watch)
        {}
        const Render::InstanceSetup& instances() const
        {
            return steps ? steps->setup(0) : frames->setup();
        }
        void abort()
        {
            if (frames) frames->abort();
            if (steps) steps->abort();
        }

        ViewRequest request;
        Render::RenderSettings settings;  ///< at the request's scale
        Render::WarningFilter warnings;
        std::optional<Render::FrameRenderer> frames;  ///< without steps
        std::optional<Render::StepList> steps;
        std::optional<int> recorded;  ///< the frame whose blocks are repeated
    };

    void forget();
    void prepare(const ViewRequest& request);
    const Render::InstanceSetup& setupFor(const ViewRequest& request);
    const Render::JobInputs& inputsFor(const ViewRequest& request);
    void prepareSteps(Setup& next, const Render::FillRegion& region);
    std::shared_ptr<const Render::FramePictures> picturesOf(const ViewRequest& request, int frame);
    void renderFrame(int frame, RenderResult& result);
    Picture renderValues(const Host::RenderRequest& request, const Render::FramePictures& pictures,
                         RenderResult& result);
    Picture renderSteps(const Host::RenderRequest& request, const Render::FramePictures& pictures);
    std::shared_ptr<const Render::PreparedMatte> matteOf(const Render::FramePictures& pictures);
    int recordingFrame(int frame) const;
    void stopIfAborted();

    Render::RenderSettings settings_;
    PictureCache& pictures_;
    RenderWatch& watch_;
    Render::WarningFilter warnings_;
    Render::PluginMessages messages_;
    Render::PluginSession& session_;
    Render::InstanceSetup setup_;
    std::optional<Render::InstanceSetup> paintedSetup_;  ///< for a matte that replaces a file's
    std::optional<Render::MattePreparation> mattes_;
    double matteScale_ = 0.0;  ///< the scale of mattes_; its polarity follows
    Render::Polarity mattePolarity_ = Render::Polarity::White;
    std::mutex
        mutex_;  ///< guards the flag and the pointer, which only the rendering thread changes
    std::unique_ptr<Setup> current_;
    bool isAborted_ = false;
    std::vector<OfxRectI> stepAreas_;  ///< of the steps of current_
};

}  // namespace Tesseret::Viewer
