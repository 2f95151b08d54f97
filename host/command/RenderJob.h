#pragma once

/// A whole render: from files through the plug-in to files. The next frame is read and the last one
/// written while one renders.

#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "host/HostSinks.h"
#include "host/command/InstanceSetup.h"
#include "host/command/JobInputs.h"
#include "host/command/PluginSession.h"
#include "host/command/RenderSettings.h"

namespace Tesseret::Command {

/// What became of one frame; times in seconds.
struct FrameResult {
    int frame = 0;
    std::filesystem::path file;
    double readTime = 0.0, renderTime = 0.0, writeTime = 0.0;
};

/// Told how a job goes on, beside what the plug-in tells. Calls come from the thread of `run`
/// unless said otherwise.
class JobListener : public Host::RenderListener {
public:
    virtual void frameBegan(int /*frame*/) {}
    /// One of several areas of the frame's matte is about to be filled; they count from 0.
    virtual void areaBegan(std::size_t /*area*/, std::size_t /*count*/) {}
    /// From another thread, while the next frame renders.
    virtual void frameWritten(const FrameResult& /*result*/) {}
    /// One line about a file or from the host; the same line comes once. From any thread.
    virtual void warning(const std::string& /*text*/) {}
    /// A message of the plug-in that is no error.
    virtual void message(const std::string& /*text*/) {}
};

class RenderJob {
public:
    /// Checks everything that can be known before the first render, loads the plug-in, and makes
    /// the instance. Throws `UsageError`, `FileError` or `std::invalid_argument`. The listener
    /// outlives the job.
    RenderJob(RenderSettings settings, JobListener& listener);

    /// Renders all frames in order. Throws `RenderFailure` with the plug-in's message,
    /// `Interrupted` after an abort, and `FileError` or `UsageError` for a file that turns out to
    /// be unusable.
    void run();

    const JobInputs& inputs() const { return inputs_; }
    Host::Instance& instance() { return *ready_.instance; }
    PluginSession& session() { return session_; }

private:
    struct ReadFrame {
        FramePictures pictures;
        double seconds = 0.0;
    };
    struct RenderedFrame {
        Host::Picture picture;
        std::shared_ptr<const Files::FileRecord> record;
        std::optional<OfxRectI> displayWindow;  ///< when it is not the source's own
        FrameResult result;
    };

    Host::HostOptions hostOptions();
    Host::RenderRequest request(int frame, const Files::PictureInfo& source) const;
    ReadFrame readFrame(int frame);
    RenderedFrame renderFrame(int frame, const ReadFrame& read);
    void writeFrame(RenderedFrame rendered);
    std::optional<OfxRectI> changedDisplay(const Files::PictureInfo& source, OfxRectI window) const;
    void tell(const std::string& warning);
    OfxStatus receive(const Host::Message& message);
    [[noreturn]] void fail(int frame, const std::string& reason) const;

    RenderSettings settings_;
    JobListener& listener_;
    JobInputs inputs_;
    Host::Depth depth_;
    PluginSession session_;
    ReadyInstance ready_;
    bool asColour_;
    std::string errorMessage_;  ///< of the plug-in, about the frame being rendered
    std::mutex toldMutex_;
    std::set<std::string> told_;  ///< guarded by toldMutex_
};

}  // namespace Tesseret::Command
