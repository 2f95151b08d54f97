#pragma once

#include <cstddef>
#include <filesystem>
#include <initializer_list>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "files/PictureReader.h"
#include "host/HostSinks.h"

namespace Tesseret::Render {

struct PreparedMatte;

/// The result of one frame; times in seconds.
struct FrameResult {
    int frame = 0;
    std::filesystem::path file;
    double readTime = 0.0, renderTime = 0.0, writeTime = 0.0;
};

/// Receives the progress of a job, besides the plug-in's own reports. Calls come from the thread of
/// `RenderJob::run` unless noted otherwise.
class JobListener : public Host::RenderListener {
public:
    virtual void frameBegan(int /*frame*/) {}
    /// The frame is filled from a matte made from these channels.
    virtual void matteTaken(Files::MatteFrom /*from*/) {}
    /// A frame's matte as a step fills from it: the first `count` areas.
    virtual void mattePrepared(std::size_t /*step*/, const PreparedMatte& /*matte*/,
                               std::size_t /*count*/)
    {}
    /// One of the areas of the frame's matte is about to be filled; they count from 0.
    virtual void areaBegan(std::size_t /*area*/, std::size_t /*count*/) {}
    /// From another thread, while the next frame renders.
    virtual void frameWritten(const FrameResult& /*result*/) {}
    /// The job goes on without the frame; one line. From the thread of `run`.
    virtual void frameFailed(int /*frame*/, const std::string& /*text*/) {}
    /// One line about a file or from the host; each line comes once. From any thread.
    virtual void warning(const std::string& /*text*/) {}
    /// A message of the plug-in that is not an error.
    virtual void message(const std::string& /*text*/) {}
};

/// Passes each warning on once. From any thread.
class WarningFilter {
public:
    explicit WarningFilter(JobListener& listener) : listener_(listener) {}

    void report(const std::string& warning)
    {
        const std::lock_guard lock(mutex_);
        if (reported_.insert(warning).second) listener_.warning(warning);
    }

private:
    JobListener& listener_;
    std::mutex mutex_;
    std::set<std::string> reported_;  ///< guarded by mutex_
};

/// Notifies several listeners, in their order.
class JobListeners final : public JobListener {
public:
    /// They outlive this; null ones are skipped.
    JobListeners(std::initializer_list<JobListener*> listeners);

    void frameBegan(int frame) override;
    void matteTaken(Files::MatteFrom from) override;
    void mattePrepared(std::size_t step, const PreparedMatte& matte, std::size_t count) override;
    void areaBegan(std::size_t area, std::size_t count) override;
    void frameWritten(const FrameResult& result) override;
    void frameFailed(int frame, const std::string& text) override;
    void warning(const std::string& text) override;
    void message(const std::string& text) override;
    void stageBegan(Host::Instance& instance, std::string_view stage) override;
    void stageEnded(Host::Instance& instance, std::string_view stage) override;
    void progress(Host::Instance& instance, double fraction) override;
    void blockLaid(Host::Instance& instance, const TesseretBlockV1& block) override;
    void note(Host::Instance& instance, std::string_view text) override;
    /// Whether any of them wants maps; then all receive them.
    bool wantsMaps(Host::Instance& instance) override;
    void mapMade(Host::Instance& instance, const TesseretMapV1& map) override;
    void pathFound(Host::Instance& instance, const TesseretPathV1& path) override;

private:
    template <typename What, typename... Values>
    void notify(What what, Values&... values)
    {
        for (JobListener* const listener : listeners_) (listener->*what)(values...);
    }

    std::vector<JobListener*> listeners_;
};

}  // namespace Tesseret::Render
