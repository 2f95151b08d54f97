#include "libraries/Processor/ovMultiProcessor.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <new>

#include "libraries/Processor/HostThreads.h"
#include "libraries/exceptions/Exceptions.h"

namespace Orvane {
namespace {

using Exceptions::kUnknownFunction;

// What error reports show of this file. Users quote these numbers, so they are fixed values.
constexpr const char* kSourceName = "libraries/Processor/ovMultiProcessor";
constexpr int kLineWorkerOutOfMemory = 67;
constexpr int kLineWorkerException = 73;
constexpr int kLineWorkerBadAlloc = 79;
constexpr int kLinePassFailed = 118;
constexpr int kLinePassOutOfMemory = 123;

}  // namespace

void splitRange(int& begin, int& end, int index, int count)
{
    if (index < 0 || count <= 0) return;
    // 64 bits: a host may report any number of threads.
    const std::int64_t base = begin;
    const std::int64_t length = std::int64_t{end} - begin;
    const std::int64_t chunk = (length + count - 1) / count;
    const std::int64_t first = index * chunk;
    const std::int64_t last = index == count - 1 ? length : std::min(first + chunk, length);
    constexpr std::int64_t kMax = std::numeric_limits<int>::max();
    begin = static_cast<int>(std::min(base + first, kMax));
    end = static_cast<int>(base + last);
}

void MultiProcessor::runPasses()
{
    for (currentPass_ = 0; currentPass_ < numPasses_; ++currentPass_) runPass();
}

void MultiProcessor::process()
{
    begin();
    runPasses();
    end();
}

int MultiProcessor::numThreads() const
{
    if (!multiThreaded_) return 1;
    return runningThreaded_ && hostThreadCount() > 0 ? hostThreadCount() : hostNumCPUs();
}

int MultiProcessor::numCPUs() const
{
    return hostNumCPUs();
}

int MultiProcessor::threadIndex() const
{
    return multiThreaded_ && runningThreaded_ ? hostThreadIndex() : 0;
}

void MultiProcessor::threadRange(int& first, int& end) const
{
    if (isRunningThreaded()) splitRange(first, end, threadIndex(), numThreads());
}

void MultiProcessor::runPass()
{
    if (pollAbort()) return;
    beginPass();
    if (pollAbort()) return;
    if (multiThreaded_ && !hostIsSpawnedThread()) {
        runOnWorkers();
    } else {
        processPass();
    }
    endPass();
    throwFailure();
}

void MultiProcessor::runOnWorkers()
{
    failureCode_ = 0;
    const std::array<void*, 1> node{this};
    runningThreaded_ = true;
    runOnThreads(&MultiProcessor::workerEntry, node);
    runningThreaded_ = false;
}

void MultiProcessor::throwFailure()
{
    switch (failureCode_.exchange(0)) {
        case kErrorThreadFailed:
            throw Exceptions::ThreadFailed(kUnknownFunction, kSourceName, kLinePassFailed,
                                           "thread failed");
        case kErrorOutOfMemory:
            throw Exceptions::OutOfMemory(kUnknownFunction, kSourceName, kLinePassOutOfMemory);
        default:
            break;
    }
}

void MultiProcessor::recordFailure(int code) noexcept
{
    // Several workers may fail at the same moment, and the members of the record are plain ints.
    if (statusRecord_ != nullptr) {
        std::atomic_ref(statusRecord_->aborted).store(1);
        std::atomic_ref(statusRecord_->errorCode).store(code);
    }
    failureCode_ = code;
}

/// One worker's call. No exception may leave it: the frames above belong to the host. Memory may be
/// short, so what the catch clauses do needs none.
void MultiProcessor::workerEntry(std::span<void* const> arguments) noexcept
{
    auto& node = *static_cast<MultiProcessor*>(arguments[0]);
    try {
        node.processPass();
    } catch (Exceptions::OutOfMemory& exception) {
        node.recordFailure(kErrorOutOfMemory);
        recordCatch(exception, kUnknownFunction, kSourceName, kLineWorkerOutOfMemory);
    } catch (Exceptions::ExceptionI& exception) {
        node.recordFailure(kErrorThreadFailed);
        recordCatch(exception, kUnknownFunction, kSourceName, kLineWorkerException);
    } catch (const std::bad_alloc&) {
        node.recordFailure(kErrorOutOfMemory);
        Exceptions::ThreadFailed failure(kUnknownFunction, kSourceName, kLineWorkerBadAlloc,
                                         "bad_alloc");
        recordCatch(failure, kUnknownFunction, kSourceName, kLineWorkerBadAlloc);
    } catch (...) {
        // No other type is thrown on purpose; it would count as a failed worker.
        node.recordFailure(kErrorThreadFailed);
        Exceptions::ThreadFailed failure(kUnknownFunction, kSourceName, kLineWorkerException,
                                         "unknown exception");
        recordCatch(failure, kUnknownFunction, kSourceName, kLineWorkerException);
    }
}

}  // namespace Orvane
