#include "host/ThreadPool.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "host/EmbeddedHost.h"
#include "host/SuiteGuard.h"
#include "platform/AtomicWait.h"

namespace Tesseret::Host {

namespace {

/// In place of the number of untaken calls: the pool stops.
constexpr std::uint32_t kStop = UINT32_MAX;
constexpr std::chrono::microseconds kSpinTime{50};

struct CallState {
    bool inCall = false;
    unsigned int index = 0;
};
thread_local CallState callState;

/// Makes one call on this thread. No exception may pass through a C caller.
bool callGuarded(OfxThreadFunctionV1* function, unsigned int index, unsigned int calls,
                 void* argument)
{
    const CallState outer = callState;
    callState = {true, index};
    bool returned = true;
    try {
        function(index, calls, argument);
    } catch (...) {
        returned = false;
    }
    callState = outer;
    return returned;
}

/// Spins until `done` is true, for at most kSpinTime.
template <typename Condition>
bool spinUntil(Condition done)
{
    const auto end = std::chrono::steady_clock::now() + kSpinTime;
    do {
        for (int i = 0; i < 64; ++i) {
            if (done()) return true;
        }
        std::this_thread::yield();
    } while (std::chrono::steady_clock::now() < end);
    return done();
}

}  // namespace

ThreadPool::ThreadPool(EmbeddedHost& host, unsigned int count)
    : host_(host), size_(std::max(count, 1u))
{}

ThreadPool::~ThreadPool()
{
    untaken_.store(kStop, std::memory_order_release);
    Orvane::wakeAll(untaken_);
    for (std::thread& thread : threads_) thread.join();
}

bool ThreadPool::isInCall()
{
    return callState.inCall;
}

unsigned int ThreadPool::callIndex()
{
    return callState.index;
}

bool ThreadPool::run(OfxThreadFunctionV1* function, unsigned int calls, void* argument)
{
    const std::unique_lock pass(passMutex_, std::try_to_lock);
    if (!pass || calls < 2) return runAlone(function, calls, argument);
    if (threads_.empty()) start();
    function_ = function;
    calls_ = calls;
    argument_ = argument;
    failed_.store(false, std::memory_order_relaxed);
    unfinished_.store(calls, std::memory_order_relaxed);
    untaken_.store(calls - 1, std::memory_order_release);  // index 0 is the caller's
    Orvane::wakeAll(untaken_);
    callOne(0);
    for (unsigned int index = 0; takeCall(index);) callOne(index);
    const auto finished = [this] { return unfinished_.load(std::memory_order_acquire) == 0; };
    if (!spinUntil(finished)) {
        for (std::uint32_t left; (left = unfinished_.load(std::memory_order_acquire)) != 0;) {
            Orvane::sleepWhile(unfinished_, left);
        }
    }
    holdBack(takeHeld());
    return !failed_.load(std::memory_order_relaxed);
}

std::exception_ptr ThreadPool::takeHeld()
{
    const std::lock_guard lock(heldMutex_);
    return std::exchange(held_, nullptr);
}

bool ThreadPool::runAlone(OfxThreadFunctionV1* function, unsigned int calls, void* argument)
{
    bool good = true;
    for (unsigned int index = 0; index < calls; ++index) {
        good = callGuarded(function, index, calls, argument) && good;
    }
    return good;
}

void ThreadPool::start()
{
    threads_.reserve(size_ - 1);
    for (unsigned int i = 1; i < size_; ++i) threads_.emplace_back([this] { work(); });
}

void ThreadPool::work()
{
    const EmbeddedHost::Scope scope(host_);
    while (waitForCalls()) {
        for (unsigned int index = 0; takeCall(index);) callOne(index);
    }
}

/// False when the pool stops.
bool ThreadPool::waitForCalls()
{
    const auto called = [this] { return untaken_.load(std::memory_order_acquire) != 0; };
    if (!spinUntil(called)) {
        while (!called()) Orvane::sleepWhile(untaken_, 0);
    }
    return untaken_.load(std::memory_order_acquire) != kStop;
}

/// Takes the next call of the running pass. A count read in an earlier pass is harmless: the
/// exchange succeeds only with a call of the running pass.
bool ThreadPool::takeCall(unsigned int& index)
{
    std::uint32_t left = untaken_.load(std::memory_order_acquire);
    do {
        if (left == 0 || left == kStop) return false;
    } while (!untaken_.compare_exchange_weak(left, left - 1, std::memory_order_acq_rel,
                                             std::memory_order_acquire));
    index = calls_ - left;
    return true;
}

void ThreadPool::callOne(unsigned int index)
{
    HeldException held;
    if (!callGuarded(function_, index, calls_, argument_)) {
        failed_.store(true, std::memory_order_relaxed);
    }
    if (std::exception_ptr exception = held.take()) {
        const std::lock_guard lock(heldMutex_);
        if (!held_) held_ = std::move(exception);
    }
    if (unfinished_.fetch_sub(1, std::memory_order_acq_rel) == 1) Orvane::wakeAll(unfinished_);
}

}  // namespace Tesseret::Host
