#include "viewer/model/SettingsSearch.h"

#include <exception>
#include <utility>

#include "render/PluginMessages.h"
#include "viewer/model/WindowWording.h"

namespace Tesseret::Viewer {

SettingsSearch::~SettingsSearch()
{
    stop();
    wait();
}

void SettingsSearch::start(SearchJob job, const Render::JobInputs& inputs)
{
    wait();
    wantsEnd_ = false;
    {
        const std::lock_guard lock(mutex_);
        state_ = {};
        state_.isRunning = true;
        outcome_.reset();
    }
    thread_ = std::thread([this, job = std::move(job), &inputs] { run(job, inputs); });
}

void SettingsSearch::stop()
{
    wantsEnd_ = true;
    const std::lock_guard lock(mutex_);
    state_.isStopping = state_.isRunning;
}

void SettingsSearch::wait()
{
    if (thread_.joinable()) thread_.join();
}

std::optional<SearchOutcome> SettingsSearch::take()
{
    const std::lock_guard lock(mutex_);
    return std::exchange(outcome_, std::nullopt);
}

bool SettingsSearch::isBusy() const
{
    const std::lock_guard lock(mutex_);
    return state_.isRunning || outcome_;
}

SearchState SettingsSearch::state() const
{
    const std::lock_guard lock(mutex_);
    return state_;
}

/// What trials have to say is not told; the render of the best one says it again.
void SettingsSearch::run(const SearchJob& job, const Render::JobInputs& inputs)
{
    Render::JobListener silence;
    Render::WarningFilter warnings(silence);
    Render::PluginMessages messages(silence, warnings);
    SearchOutcome outcome{job, {}, ""};
    try {
        outcome.plan =
            Fill::planFill(job.settings, job.effort, job.frame, *this,
                           {session_, inputs, job.depth, job.pictures, &messages}, kVariations);
    } catch (const std::exception& error) {
        outcome.error = inWindowWords(error.what());
    }
    {
        const std::lock_guard lock(mutex_);
        outcome_ = std::move(outcome);
        state_ = {};
    }
    if (onChange_) onChange_();
}

void SettingsSearch::searched(const Fill::SearchProgress& progress)
{
    {
        const std::lock_guard lock(mutex_);
        state_.progress = progress;
        state_.best[progress.area] = progress.picture;
    }
    if (onChange_) onChange_();
}

}  // namespace Tesseret::Viewer
