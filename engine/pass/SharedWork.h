#pragma once

#include <atomic>
#include <functional>
#include <thread>

#include "libraries/Processor/ovMultiProcessor.h"

namespace Orvane::Engine {

/// Tasks that do not depend on each other, shared between the host's threads in one call. Each
/// thread takes the next task until none is left, and never waits for another: a host may run the
/// calls of a pass one after another, fewer of them than it has processors, or all on one thread.
/// Few calls with many tasks are what a busy machine likes best.
class SharedWork final : public MultiProcessor {
public:
    /// One task, worked by `worker`: counted from 0, below `workers()`, no two at once alike.
    using Task = std::function<void(int task, int worker)>;

    explicit SharedWork(RenderStatus* status);

    /// How many threads may work at once; asked of the host once.
    int workers() const { return workers_; }

    /// Runs task(0) to task(count - 1), each once. Between tasks the render thread asks the host
    /// whether to go on; after an abort the rest is left out. Throws what MultiProcessor throws.
    /// Returns whether all were run.
    bool run(int count, const Task& task);

    /// For long tasks: whether to leave off, asking the host when this is the render thread.
    bool stops();

    void processPass() override;

private:
    int workers_;
    std::thread::id renderThread_ = std::this_thread::get_id();
    const Task* task_ = nullptr;
    int count_ = 0;
    std::atomic<int> nextTask_{0}, nextWorker_{0};
    std::atomic<bool> stopped_{false};
};

}  // namespace Orvane::Engine
