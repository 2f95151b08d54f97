#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "host/command/FrameRenderer.h"
#include "host/command/PluginMessages.h"
#include "host/viewer/PictureCache.h"
#include "host/viewer/RenderWatch.h"

namespace Tesseret::Viewer {

/// Renders orders one after another on instances of its own.
class OrderRenderer {
public:
    /// Loads the plug-in and checks the settings. Throws as `InstanceSetup` does. Pictures and
    /// watch outlive the object.
    OrderRenderer(const Command::RenderSettings& settings, PictureCache& pictures,
                  RenderWatch& watch);

    /// Before each order: aborts from now on mean that one.
    void begin();
    /// From any thread.
    void abort();
    /// Null after an abort; whatever else goes wrong stands in the result.
    std::shared_ptr<RenderResult> render(const RenderOrder& order);

private:
    /// Ready for all frames of a sequence with the same values and scale.
    struct Setup {
        Setup(const RenderOrder& order, Command::RenderSettings scaled,
              Command::InstanceSetup setup, RenderWatch& watch);

        RenderOrder order;
        Command::RenderSettings settings;  ///< at the order's scale
        Command::WarningFilter warnings;
        Command::FrameRenderer frames;
        std::optional<int> recorded;  ///< the frame that the blocks to repeat were laid in
    };

    void forget();
    void prepare(const RenderOrder& order);
    Host::Picture renderFrame(int frame, bool wantsMaps);
    std::shared_ptr<const Command::PreparedMatte> matteOf(const Command::FramePictures& pictures);
    int recordingFrame(int frame) const;
    void stopIfAborted();

    Command::RenderSettings settings_;
    PictureCache& pictures_;
    RenderWatch& watch_;
    Command::WarningFilter warnings_;
    Command::PluginMessages messages_;
    Command::PluginSession session_;
    Command::InstanceSetup setup_;
    std::optional<Command::MattePreparation> mattes_;
    double matteScale_ = 0.0;  ///< of mattes_, and its polarity
    Command::Polarity mattePolarity_ = Command::Polarity::White;
    std::mutex
        mutex_;  ///< guards the pointer, which only the renders' thread changes, and the flag
    std::unique_ptr<Setup> current_;
    bool isAborted_ = false;
};

}  // namespace Tesseret::Viewer
