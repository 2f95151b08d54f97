#pragma once

/// A whole render, from files through the plug-in to files. While a frame renders, the next one is
/// read and the last one written.

#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "files/PictureWriter.h"
#include "render/FillSteps.h"
#include "render/JobHost.h"
#include "render/JobInputs.h"
#include "render/JobListener.h"
#include "render/PluginMessages.h"
#include "render/PluginSession.h"
#include "render/RenderSettings.h"
#include "render/SavedFill.h"
#include "render/ShotPlan.h"
#include "render/StepList.h"

namespace Tesseret::Render {

class RenderJob {
public:
    /// Checks everything that can be known before the first render, loads the plug-in, and makes
    /// the instance. Throws `UsageError`, `FileError` or `std::invalid_argument`. The listener
    /// outlives the job.
    RenderJob(RenderSettings settings, JobListener& listener);

    /// Renders all frames in order. Throws `RenderFailure` with the plug-in's message,
    /// `Interrupted` after an abort, and `FileError` or `UsageError` for a file that proves
    /// unusable. A job that keeps going throws `RenderFailure` at its end, with a line for each
    /// frame that failed.
    void run();

    /// How many frames are written.
    std::size_t frameCount() const { return toWrite_.size(); }

    /// Whether later frames show the blocks of the first one, in any step.
    bool repeatsBlocks() const { return steps_.repeatsBlocks(); }

    const JobInputs& inputs() const { return inputs_; }
    const FillRegion& fillRegion() const { return steps_.setup(0).fillRegion(); }
    const InstanceSetup& setup() const { return steps_.setup(0); }  ///< of the first step
    /// The settings and values of all steps.
    std::vector<FillStep> steps() const;
    /// The first of them.
    Host::Instance& instance() { return steps_.instance(); }
    PluginSession& session() { return session_; }
    /// The known host that is imitated, or empty.
    const std::string& hostLike() const { return settings_.hostLike; }

private:
    struct ReadFrame {
        FramePictures pictures;
        StepList::Mattes mattes;
        bool isMatteAlone = false;
        double seconds = 0.0;
    };
    struct RenderedFrame {
        Picture picture;
        std::shared_ptr<const Files::FileRecord> record;
        Files::WriteOptions options;
        FrameResult result;
    };

    struct ReadPictures {
        FramePictures pictures;
        double seconds = 0.0;
    };

    struct FrameFailure {
        int frame;
        std::string line;
    };

    std::future<ReadPictures> readEarly();
    void prepareShot();
    void adoptLoaded();
    ReadPictures readPictures(int frame);
    ReadFrame readFrame(int frame);
    ReadFrame readShotFrame(std::size_t index);
    void renderShotFrame(std::size_t index, ReadFrame read);
    void startWriting(RenderedFrame rendered);
    void saveRecords();
    /// Calls `work`, whose errors are the frame's, and returns whether it succeeded.
    bool attempt(const ShotFrame& frame, const std::function<void()>& work);
    void failAtEnd() const;
    void advise(const ReadFrame& read);
    RenderedFrame renderFrame(int frame, const ReadFrame& read);
    void writeFrame(RenderedFrame rendered);
    [[noreturn]] void fail(int frame, const std::string& reason);

    std::optional<SavedFill> loaded_;  ///< until it is in use
    RenderSettings settings_;
    JobListener& listener_;
    WarningFilter warnings_;
    JobHost host_;
    JobInputs inputs_;
    Depth depth_;
    std::set<int> toWrite_;
    std::future<ReadPictures> first_;  ///< the first frame is read while the plug-in is loaded
    PluginMessages messages_;
    PluginSession session_;
    StepList steps_;
    std::vector<ShotFrame> shot_;
    std::mutex readMutex_;  ///< the inputs and the preparation of mattes take one call at a time
    std::future<void> written_;  ///< waits for its work on an exception
    ShotFrame beingWritten_{};
    std::vector<FrameFailure> failures_;
    bool hasAdvised_ = false;
};

}  // namespace Tesseret::Render
