#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "fill/FillPlan.h"

namespace Tesseret::Viewer {

/// What a search is made for.
struct SearchJob {
    Render::RenderSettings settings;
    Fill::Effort effort = Fill::Effort::Normal;
    int frame = 0;
    Depth depth = Depth::Byte;
    Render::FramePictures pictures;  ///< of the frame, with its matte
};

struct SearchState {
    bool isRunning = false;
    bool isStopping = false;
    Fill::SearchProgress progress;
    /// The best fill so far of each area searched for, with its surroundings, at full size.
    std::map<std::size_t, std::shared_ptr<const Picture>> best;
};

struct SearchOutcome {
    SearchJob job;
    Fill::FillPlan plan;
    std::string error;  ///< why there is no plan; empty when there is one
};

/// A thread that searches for settings, one job at a time. Calls come from one thread, unless they
/// say otherwise.
class SettingsSearch final : private Fill::SearchListener {
public:
    /// The fills to pick from that a search keeps.
    static constexpr std::size_t kVariations = 12;

    explicit SettingsSearch(Render::PluginSession& session) : session_(session) {}
    /// Stops.
    ~SettingsSearch() override;
    SettingsSearch(const SettingsSearch&) = delete;
    SettingsSearch& operator=(const SettingsSearch&) = delete;

    /// While none is running. The inputs outlive the search.
    void start(SearchJob job, const Render::JobInputs& inputs);
    /// Ends the search with the best so far.
    void stop();
    /// What was found, once the search has ended; nullopt before, and after it has been taken.
    std::optional<SearchOutcome> take();
    /// Waits for the end of the search.
    void wait();
    /// Whether a search runs, or has ended and was not taken. From any thread, as `state`.
    bool isBusy() const;
    SearchState state() const;
    /// Called on any thread whenever the state changes. Set before the first start.
    void setOnChange(std::function<void()> onChange) { onChange_ = std::move(onChange); }

private:
    void run(const SearchJob& job, const Render::JobInputs& inputs);
    void searched(const Fill::SearchProgress& progress) override;
    bool wantsEnd() override { return wantsEnd_; }

    Render::PluginSession& session_;
    std::function<void()> onChange_;
    std::atomic<bool> wantsEnd_ = false;
    mutable std::mutex mutex_;  ///< guards the two below
    SearchState state_;
    std::optional<SearchOutcome> outcome_;
    std::thread thread_;
};

}  // namespace Tesseret::Viewer
