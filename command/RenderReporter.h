#pragma once

#include <chrono>
#include <mutex>
#include <optional>
#include <set>
#include <string>

#include "command/ProgressBar.h"
#include "command/StageTimes.h"
#include "render/RenderJob.h"

namespace Tesseret::Command {

enum class Verbosity { Quiet, Normal, Verbose };

/// Reports a job to the user: a progress bar on a terminal, else a line for each file on standard
/// output; notes and warnings on standard error, also when quiet.
class RenderReporter final : public Render::JobListener {
public:
    explicit RenderReporter(Verbosity verbosity);
    ~RenderReporter() override;

    /// Before the first frame.
    void begin(Render::RenderJob& job);
    /// After the last frame: prints times and memory when verbose.
    void finish();

    void frameBegan(int frame) override;
    void matteTaken(Files::MatteFrom from) override;
    void areaBegan(std::size_t area, std::size_t count) override;
    void frameWritten(const Render::FrameResult& result) override;
    void frameFailed(int frame, const std::string& text) override;
    void warning(const std::string& text) override;
    void message(const std::string& text) override;
    void stageBegan(Host::Instance& instance, std::string_view stage) override;
    void stageEnded(Host::Instance& instance, std::string_view stage) override;
    void progress(Host::Instance& instance, double fraction) override;
    void blockLaid(Host::Instance& instance, const TesseretBlockV1& block) override;
    void note(Host::Instance& instance, std::string_view text) override;

private:
    void drawBar();
    void printJob(Render::RenderJob& job);
    void printLine(const std::string& kind, const std::string& text);
    double elapsed() const;

    const Verbosity verbosity_;
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::mutex mutex_;  ///< guards everything below
    ProgressBar bar_;
    StageTimes stages_;
    std::set<std::string> notes_;
    std::size_t frameCount_ = 1, framesWritten_ = 0, framesBegun_ = 0;
    std::size_t area_ = 0, areaCount_ = 1, reportedAreaCount_ = 1;
    std::optional<Files::MatteFrom> reportedMatte_;
    int frame_ = 0;
    double stageFraction_ = 0.0;
    long blocks_ = 0;
    Render::FrameResult total_;
};

}  // namespace Tesseret::Command
