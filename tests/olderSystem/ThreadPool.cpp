/// The host's threads for compilers without waiting atomics, as scripts/older-system.sh needs them:
/// each pass starts its own threads. In place of host/ThreadPool.cpp.

#include "host/ThreadPool.h"

#include <algorithm>
#include <utility>

#include "host/EmbeddedHost.h"
#include "host/SuiteGuard.h"

namespace Tesseret::Host {

namespace {

thread_local bool inCall = false;
thread_local unsigned int indexOfCall = 0;

bool callGuarded(OfxThreadFunctionV1* function, unsigned int index, unsigned int calls,
                 void* argument)
{
    const bool outer = std::exchange(inCall, true);
    const unsigned int outerIndex = std::exchange(indexOfCall, index);
    bool returned = true;
    try {
        function(index, calls, argument);
    } catch (...) {
        returned = false;
    }
    inCall = outer;
    indexOfCall = outerIndex;
    return returned;
}

}  // namespace

ThreadPool::ThreadPool(EmbeddedHost& host, unsigned int count)
    : host_(host), size_(std::max(count, 1u))
{}

ThreadPool::~ThreadPool() = default;

bool ThreadPool::isInCall()
{
    return inCall;
}

unsigned int ThreadPool::callIndex()
{
    return indexOfCall;
}

bool ThreadPool::run(OfxThreadFunctionV1* function, unsigned int calls, void* argument)
{
    const std::unique_lock pass(passMutex_, std::try_to_lock);
    if (!pass || calls < 2) return runAlone(function, calls, argument);
    function_ = function;
    calls_ = calls;
    argument_ = argument;
    failed_ = false;
    std::vector<std::thread> threads;
    for (unsigned int index = 1; index < calls; ++index) {
        threads.emplace_back([this, index] {
            const EmbeddedHost::Scope scope(host_);
            callOne(index);
        });
    }
    callOne(0);
    for (std::thread& thread : threads) thread.join();
    holdBack(takeHeld());
    return !failed_;
}

std::exception_ptr ThreadPool::takeHeld()
{
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

void ThreadPool::callOne(unsigned int index)
{
    HeldException held;
    if (!callGuarded(function_, index, calls_, argument_)) failed_ = true;
    if (std::exception_ptr exception = held.take()) {
        const std::lock_guard lock(heldMutex_);
        if (!held_) held_ = std::move(exception);
    }
}

}  // namespace Tesseret::Host
