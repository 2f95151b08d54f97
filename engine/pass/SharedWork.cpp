#include "engine/pass/SharedWork.h"

#include <algorithm>

#include "libraries/Processor/HostThreads.h"

namespace Orvane::Engine {

namespace {

constexpr int kMaxWorkers = 256;  ///< a host may report any number

}  // namespace

SharedWork::SharedWork(RenderStatus* status)
    : threads_(hostIsSpawnedThread() ? 1 : hostNumCPUs()), workers_(std::min(threads_, kMaxWorkers))
{
    setStatusRecord(status);
}

bool SharedWork::run(int count, const Task& task)
{
    if (count <= 0) return !stops();
    task_ = &task;
    count_ = count;
    nextTask_ = 0;
    nextWorker_ = 0;
    // A single task needs no call.
    setMultiThreaded(workers_ > 1 && count > 1);
    MultiProcessor::process();
    finishPolls();
    if (!stops() && nextTask_ < count_) {  // the host made no call
        nextWorker_ = 0;
        processPass();
        finishPolls();
    }
    task_ = nullptr;
    const bool isStopped = stops();
    if (isStopped) finishPolls();
    return !isStopped;
}

/// Brings the record and what the workers know of an abort together.
void SharedWork::finishPolls()
{
    pollThread_ = std::this_thread::get_id();
    RenderStatus* const status = statusRecord();
    if (status == nullptr) return;
    if (status->aborted != 0) {
        stopped_ = true;  // known already: the host is not asked again
    } else if (stopped_) {
        status->aborted = 1;
        status->errorCode = polledCode_;
    }
}

bool SharedWork::stops()
{
    if (stopped_.load(std::memory_order_relaxed)) return true;
    if (std::this_thread::get_id() != pollThread_.load(std::memory_order_relaxed)) return false;
    // The record itself is for the render thread; workers that fail write it meanwhile.
    const RenderStatus* const status = statusRecord();
    if (status == nullptr || status->poll == nullptr) return false;
    if (status->poll(status->abortHandle, &polledCode_) != 0) stopped_ = true;
    return stopped_;
}

void SharedWork::processPass()
{
    const int worker = nextWorker_.fetch_add(1);
    if (worker >= workers_) return;  // the host made more calls than it has processors
    // One thread of a call polls, whether or not the host runs a call on the render thread.
    if (worker == 0) pollThread_ = std::this_thread::get_id();
    for (int task = nextTask_.fetch_add(1); task < count_; task = nextTask_.fetch_add(1)) {
        if (stops()) return;
        (*task_)(task, worker);
    }
}

}  // namespace Orvane::Engine
