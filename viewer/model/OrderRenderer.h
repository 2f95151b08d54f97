#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "render/FrameRenderer.h"
#include "render/PluginMessages.h"
#include "viewer/model/PictureCache.h"
#include "viewer/model/RenderWatch.h"

namespace Tesseret::Viewer {

/// Renders orders one after another on instances of its own.
class OrderRenderer {
public:
    /// Checks the settings. Throws as `InstanceSetup` does. Session, pictures and watch outlive the
    /// object.
    OrderRenderer(Render::PluginSession& session, const Render::RenderSettings& settings,
                  PictureCache& pictures, RenderWatch& watch);

    /// Before each order: aborts from now on mean that one.
    void begin();
    /// From any thread.
    void abort();
    /// Null after an abort; whatever else goes wrong stands in the result.
    std::shared_ptr<RenderResult> render(const RenderOrder& order);

private:
    /// Ready for all frames of a sequence with the same values and scale.
    struct Setup {
        Setup(const RenderOrder& order, Render::RenderSettings scaled, Render::InstanceSetup setup,
              RenderWatch& watch);

        RenderOrder order;
        Render::RenderSettings settings;  ///< at the order's scale
        Render::WarningFilter warnings;
        Render::FrameRenderer frames;
        std::optional<int> recorded;  ///< the frame that the blocks to repeat were laid in
    };

    void forget();
    void prepare(const RenderOrder& order);
    Picture renderFrame(int frame, bool wantsMaps);
    std::shared_ptr<const Render::PreparedMatte> matteOf(const Render::FramePictures& pictures);
    int recordingFrame(int frame) const;
    void stopIfAborted();

    Render::RenderSettings settings_;
    PictureCache& pictures_;
    RenderWatch& watch_;
    Render::WarningFilter warnings_;
    Render::PluginMessages messages_;
    Render::InstanceSetup setup_;
    std::optional<Render::MattePreparation> mattes_;
    double matteScale_ = 0.0;  ///< of mattes_, and its polarity
    Render::Polarity mattePolarity_ = Render::Polarity::White;
    std::mutex
        mutex_;  ///< guards the pointer, which only the renders' thread changes, and the flag
    std::unique_ptr<Setup> current_;
    bool isAborted_ = false;
};

}  // namespace Tesseret::Viewer
