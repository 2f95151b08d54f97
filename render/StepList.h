#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <vector>

#include "render/FrameRenderer.h"
#include "render/JobInputs.h"
#include "render/PreparedMatte.h"

namespace Tesseret::Render {

/// Renders the steps of a fill, each over the result of the one before.
class StepList {
public:
    /// For each step; null when it does not fill from a matte.
    using Mattes = std::vector<std::shared_ptr<const PreparedMatte>>;

    /// At least one step. Textures are cut as each step says; the inputs' own crops do not count.
    /// Throws `UsageError`. Session, listener and warnings outlive the object, and so does what
    /// listens to the instances, which may be null.
    StepList(PluginSession& session, const JobInputs& inputs,
             const std::vector<RenderSettings>& steps, Depth depth, JobListener& listener,
             WarningFilter& warnings,
             const std::shared_ptr<PaintedAreas>& painted = std::make_shared<PaintedAreas>(),
             Host::InstanceListener* instances = nullptr);
    StepList(const StepList&) = delete;
    StepList& operator=(const StepList&) = delete;

    const InstanceSetup& setup(std::size_t step) const { return steps_[step].frames.setup(); }
    const RenderSettings& settings(std::size_t step) const { return steps_[step].settings; }
    /// How many of the matte's areas a step fills.
    std::size_t areasOf(std::size_t step, const PreparedMatte& matte) const
    {
        return steps_[step].frames.areasOf(matte);
    }
    /// The first of them; the areas of a matte and further steps may have more.
    Host::Instance& instance() { return steps_.front().frames.instance(); }

    /// Whether frames repeat the blocks of earlier ones.
    bool repeatsBlocks() const;
    /// Whether some step would choose new blocks in this frame, for later ones to repeat.
    bool recordsAt(int frame, const Mattes& mattes) const;
    /// Follows the areas of a frame that is not rendered and would not record.
    void passBy(const Mattes& mattes);
    /// Before the first render: keeps what is recorded, for `records`.
    void keepRecords();
    /// What each step recorded last. Throws as `FrameRenderer::record` does.
    std::vector<FillRecord> records() const;
    /// Before the first render: later frames repeat what this frame recorded, in each step.
    void adopt(int frame, std::vector<FillRecord> records);
    /// After a frame that failed: the next one records.
    void forgetRecords();
    std::size_t count() const { return steps_.size(); }

    void beginSequence(OfxRangeD frames, const Host::RenderRequest& first);
    void endSequence();

    /// One call at a time, but beside a render.
    Mattes prepare(const FramePictures& pictures);
    /// Throws as `FrameRenderer::render` does.
    Picture render(const Host::RenderRequest& request, FramePictures pictures,
                   const Mattes& mattes);
    /// Makes the running render and every later one end with `Interrupted`. From any thread.
    void abort();

private:
    struct Step {
        Step(PluginSession& session, const JobInputs& all, const RenderSettings& own, Depth depth,
             JobListener& listener, WarningFilter& warnings, Host::InstanceListener* instances);

        RenderSettings settings;
        JobInputs inputs;
        FrameRenderer frames;
        std::optional<MattePreparation> mattes;  ///< when the plug-in fills from a matte
    };

    std::deque<Step> steps_;
};

}  // namespace Tesseret::Render
