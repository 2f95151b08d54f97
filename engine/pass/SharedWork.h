#pragma once

#include <atomic>
#include <functional>
#include <thread>

#include "libraries/Processor/ovMultiProcessor.h"

namespace Orvane::Engine {

/// Runs independent tasks on the host's threads, in one call. Each thread takes the next task until
/// none is left, and never waits for another: a host may run the calls of a pass one after another,
/// make fewer of them than it has processors, or run all on one thread. On a busy machine few calls
/// with many tasks are fastest.
class SharedWork final : public MultiProcessor {
public:
    /// Runs one task. `worker` is 0 to workers() - 1 and differs between concurrent tasks.
    using Task = std::function<void(int task, int worker)>;

    explicit SharedWork(RenderStatus* status);

    /// How many threads the host reports; asked once.
    int threads() const { return threads_; }
    /// How many may work at once: as many, within reason, since each needs memory of its own.
    int workers() const { return workers_; }

    /// Runs task(0) to task(count - 1), each once. Between tasks one thread polls the host for an
    /// abort, which skips the rest. Returns whether all tasks ran. Throws what
    /// MultiProcessor throws.
    bool run(int count, const Task& task);

    /// For long tasks: whether to stop early. Polls the host on one thread of a call.
    bool stops();

    void processPass() override;

private:
    void finishPolls();

    int threads_, workers_;
    std::atomic<std::thread::id> pollThread_ = std::this_thread::get_id();
    int polledCode_ = 0;
    const Task* task_ = nullptr;
    int count_ = 0;
    std::atomic<int> nextTask_{0}, nextWorker_{0};
    std::atomic<bool> stopped_{false};
};

}  // namespace Orvane::Engine
