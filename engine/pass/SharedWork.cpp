#include "engine/pass/SharedWork.h"

#include "libraries/Processor/HostThreads.h"

namespace Orvane::Engine {

SharedWork::SharedWork(RenderStatus* status) : workers_(hostIsSpawnedThread() ? 1 : hostNumCPUs())
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
    // A single task runs on the calling thread.
    setMultiThreaded(workers_ > 1 && count > 1);
    MultiProcessor::process();
    if (!stops() && nextTask_ < count_) {  // the host made no call
        nextWorker_ = 0;
        processPass();
    }
    task_ = nullptr;
    return !stops();
}

bool SharedWork::stops()
{
    if (stopped_.load(std::memory_order_relaxed)) return true;
    if (std::this_thread::get_id() != renderThread_ || !pollAbort()) return false;
    stopped_ = true;
    return true;
}

void SharedWork::processPass()
{
    const int worker = nextWorker_.fetch_add(1);
    if (worker >= workers_) return;  // the host made more calls than it has processors
    for (int task = nextTask_.fetch_add(1); task < count_; task = nextTask_.fetch_add(1)) {
        if (stops()) return;
        (*task_)(task, worker);
    }
}

}  // namespace Orvane::Engine
