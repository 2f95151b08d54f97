#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "command/ProgressBar.h"
#include "render/JobHost.h"
#include "render/JobInputs.h"
#include "render/JobListener.h"
#include "render/PluginMessages.h"
#include "render/PluginSession.h"
#include "render/StepList.h"

namespace Tesseret::Command {

/// Follows the renders of a wedge: a bar on a terminal; notes and warnings on standard error, each
/// once.
class WedgeReporter final : public Render::JobListener {
public:
    explicit WedgeReporter(bool isQuiet) : bar_(stderr, !isQuiet) {}
    ~WedgeReporter() override { bar_.clear(); }

    /// The next tile is about to be rendered.
    void began(std::size_t tile, std::size_t count, const std::string& values);
    void finish() { bar_.clear(); }

    void areaBegan(std::size_t area, std::size_t count) override;
    void warning(const std::string& text) override { print("warning: " + text); }
    void message(const std::string& text) override { print(text); }
    void note(Host::Instance& instance, std::string_view text) override;
    void progress(Host::Instance& instance, double fraction) override;

private:
    void print(const std::string& text);

    std::mutex mutex_;  ///< guards everything below
    ProgressBar bar_;
    std::set<std::string> printed_;
    std::size_t tile_ = 0, tiles_ = 1, area_ = 0, areas_ = 1;
    std::string text_;
};

/// Renders the same frame with other values again and again. Each picture is what `tesseret render`
/// gives.
class WedgeJob {
public:
    /// Settings without assignments. Reads the pictures. Throws as `RenderJob` does, and
    /// `UsageError` for several frames. The listener outlives the job.
    WedgeJob(Render::RenderSettings settings, Render::JobListener& listener);

    const Render::JobInputs& inputs() const { return inputs_; }
    /// What the parameters are described as.
    const Host::ContextDescription& description();

    /// The part of the picture that `render` gives: round the areas of the matte, or all there is
    /// to render. `assignments`: of any tile.
    OfxRectI part(const std::vector<std::string>& assignments);
    /// Holds the part at least. Throws `UsageError` for values that do not fit, `RenderFailure`
    /// and `Interrupted`.
    Picture render(const std::vector<std::string>& assignments, const OfxRectI& part);

private:
    std::vector<Render::RenderSettings> stepsWith(const std::vector<std::string>& assignments);
    Render::StepList listOf(const std::vector<Render::RenderSettings>& steps);
    Host::RenderRequest request() const;

    Render::RenderSettings settings_;
    Render::JobListener& listener_;
    Render::WarningFilter warnings_;
    Render::PluginMessages messages_;
    Render::JobHost host_;
    Render::JobInputs inputs_;
    Render::PluginSession session_;
    Depth depth_;
    Render::FramePictures pictures_;
    std::shared_ptr<Render::PaintedAreas> painted_ = std::make_shared<Render::PaintedAreas>();
};

}  // namespace Tesseret::Command
