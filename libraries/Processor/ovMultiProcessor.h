#pragma once

#include <atomic>
#include <span>

#include "libraries/Processor/RenderStatus.h"

namespace Orvane {

/// A half-open range of rows.
struct RowRange {
    int begin, end;
    bool isEmpty() const { return begin >= end; }
};

/// Replaces [begin, end) with the share of thread `index` out of `count`: equal numbers of rows,
/// rounded up, the last share ending at `end`. A thread past the last row gets an empty range,
/// whose begin may lie beyond its end. The range stays whole when index is below 0 or count below
/// 1.
void splitRange(int& begin, int& end, int index, int count);

/// Base of every processing node: work done in one or more passes, each distributed over the host's
/// threads in one call. Only `processPass` runs on workers; it writes its own share and nothing
/// else. A failure on a worker becomes an exception of the family Orvane::Exceptions on the calling
/// thread once all workers are done. An abort skips passes without any error.
class MultiProcessor {
public:
    MultiProcessor() = default;
    MultiProcessor(const MultiProcessor&) = delete;
    MultiProcessor& operator=(const MultiProcessor&) = delete;

    // Virtual operations in slot order.
    virtual ~MultiProcessor() = default;
    virtual void begin() {}        ///< once per process(), before the passes
    virtual void processPass() {}  ///< the work of one pass, on every worker
    virtual void end() {}          ///< once per process(), after the passes
    virtual void beginPass() {}    ///< on the calling thread, before each pass
    virtual void endPass() {}      ///< on the calling thread, when all workers are done
    virtual void runPasses();
    virtual void process();
    virtual void setNumPasses(int count) { numPasses_ = count; }
    virtual void setMultiThreaded(bool on) { multiThreaded_ = on; }
    virtual bool isMultiThreaded() const { return multiThreaded_; }
    virtual bool isRunningThreaded() const { return runningThreaded_; }
    /// The number of threads that share a pass: while one runs, the number of calls the host made.
    virtual int numThreads() const;
    virtual int numCPUs() const;
    virtual int threadIndex() const;

    /// The abort and failure record of the current render; not owned, may be null.
    void setStatusRecord(RenderStatus* record) { statusRecord_ = record; }
    RenderStatus* statusRecord() const { return statusRecord_; }

    /// Replaces [first, end) with the calling thread's share of it.
    void threadRange(int& first, int& end) const;

    int currentPass() const { return currentPass_; }

protected:
    /// Runs one pass, for a node whose `runPasses` decides itself how many there are. An abort
    /// skips the pass; a worker's failure is thrown when the pass is done.
    void runPass();

    /// Whether the render is to stop; asks the host unless it is known already.
    [[nodiscard]] bool pollAbort() const
    {
        return statusRecord_ != nullptr && statusRecord_->pollAbort();
    }

private:
    void runOnWorkers();
    void throwFailure();
    void recordFailure(int code) noexcept;
    static void workerEntry(std::span<void* const> arguments) noexcept;

    RenderStatus* statusRecord_ = nullptr;
    bool runningThreaded_ = false;
    std::atomic<int> failureCode_ = 0;  ///< the code last written when several workers fail
    int numPasses_ = 1;
    int currentPass_ = 0;
    bool multiThreaded_ = true;
};

}  // namespace Orvane
