#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "render/FrameRenderer.h"
#include "render/PluginMessages.h"
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
        Setup(const ViewRequest& request, Render::RenderSettings scaled,
              Render::InstanceSetup setup, RenderWatch& watch);

        ViewRequest request;
        Render::RenderSettings settings;  ///< at the request's scale
        Render::WarningFilter warnings;
        Render::FrameRenderer frames;
        std::optional<int> recorded;  ///< the frame whose blocks are repeated
    };

    void forget();
    void prepare(const ViewRequest& request);
    const Render::InstanceSetup& setupFor(const ViewRequest& request);
    std::shared_ptr<const Render::FramePictures> picturesOf(const ViewRequest& request, int frame);
    void renderFrame(int frame, RenderResult& result);
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
};

}  // namespace Tesseret::Viewer
