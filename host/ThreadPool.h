#pragma once

/// Threads that live as long as the host and share the calls of one function. A pass starts no
/// threads: idle threads first spin for a short while, then sleep until the next pass.

#include <atomic>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "ofx/ofxMultiThread.h"

namespace Tesseret::Host {

class EmbeddedHost;

class ThreadPool {
public:
    /// The calling thread takes part in a pass, so the pool has count - 1 threads; they start with
    /// the first pass.
    ThreadPool(EmbeddedHost& host, unsigned int count);
    ~ThreadPool();
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    unsigned int size() const { return size_; }

    /// Calls function(index, calls, argument) once for every index below `calls` and returns when
    /// all calls have returned; false when one of them threw. The calling thread takes index 0.
    /// While another thread's pass runs, all calls are made in sequence on the calling thread.
    /// Exceptions held back in a call on any thread are held back on the calling one.
    bool run(OfxThreadFunctionV1* function, unsigned int calls, void* argument);

    /// Whether the calling thread is inside a call of `run`, and its index.
    static bool isInCall();
    static unsigned int callIndex();

private:
    void start();
    void work();
    bool waitForCalls();
    void callOne(unsigned int index);
    std::exception_ptr takeHeld();
    bool takeCall(unsigned int& index);
    bool runAlone(OfxThreadFunctionV1* function, unsigned int calls, void* argument);

    EmbeddedHost& host_;
    unsigned int size_;
    std::vector<std::thread> threads_;
    std::mutex passMutex_;  ///< one pass at a time

    // The running pass. A thread reads these only after it took a call, and the pass cannot end
    // before that call has returned.
    OfxThreadFunctionV1* function_ = nullptr;
    unsigned int calls_ = 0;
    void* argument_ = nullptr;
    std::atomic<bool> failed_{false};
    std::mutex heldMutex_;
    std::exception_ptr held_;  ///< the first exception held back in a call; guarded by heldMutex_

    std::atomic<std::uint32_t> untaken_{0};     ///< calls that no thread has taken yet
    std::atomic<std::uint32_t> unfinished_{0};  ///< calls that have not returned
};

}  // namespace Tesseret::Host
