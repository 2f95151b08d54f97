#include "viewer/model/RenderWorker.h"

#include <utility>

#include "viewer/model/RequestRenderer.h"

namespace Tesseret::Viewer {

RenderWorker::RenderWorker(Render::PluginSession& session, const Render::RenderSettings& settings,
                           PictureCache& pictures)
    : watch_(std::make_unique<RenderWatch>()),
      renderer_(std::make_unique<RequestRenderer>(session, settings, pictures, *watch_)),
      thread_([this] { run(); })
{}

RenderWorker::~RenderWorker()
{
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
        renderer_->abort();
    }
    changed_.notify_all();
    thread_.join();
}

std::uint64_t RenderWorker::request(ViewRequest request)
{
    const std::lock_guard lock(mutex_);
    next_ = std::move(request);
    if (isRendering_) renderer_->abort();
    changed_.notify_all();
    return ++lastSerial_;
}

std::shared_ptr<const RenderResult> RenderWorker::latest() const
{
    const std::lock_guard lock(mutex_);
    return latest_;
}

WorkerState RenderWorker::state() const
{
    const std::lock_guard lock(mutex_);
    if (!isRendering_ && !next_) return {};
    WorkerState state = watch_->state();
    state.isRendering = true;
    return state;
}

void RenderWorker::wait()
{
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !isBusy_ && !next_; });
}

void RenderWorker::run()
{
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return isEnding_ || next_; });
        if (isEnding_) return;
        const ViewRequest request = *std::exchange(next_, std::nullopt);
        const std::uint64_t serial = lastSerial_;
        isRendering_ = isBusy_ = true;
        renderer_->begin();
        lock.unlock();
        std::shared_ptr<RenderResult> result = renderer_->render(request);
        const bool isDone = result != nullptr;
        lock.lock();
        isRendering_ = false;
        if (isDone) {
            result->serial = serial;
            latest_ = std::move(result);
        }
        lock.unlock();
        if (isDone && onDone_) onDone_();
        lock.lock();
        isBusy_ = false;
        changed_.notify_all();
    }
}

}  // namespace Tesseret::Viewer
