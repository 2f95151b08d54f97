#pragma once

/// A suite is called through C: no exception may pass through the plug-in that called it. Whatever
/// the host, a listener or a source of pictures throws is held back in the suite's function, which
/// fails, and thrown again by the host once the plug-in's entry point has returned.

#include <exception>
#include <type_traits>

#include "ofx/ofxCore.h"

namespace Tesseret::Host {

/// Takes the exceptions that are held back on this thread while it is the newest of its kind there.
class HeldException {
public:
    HeldException();
    ~HeldException();
    HeldException(const HeldException&) = delete;
    HeldException& operator=(const HeldException&) = delete;

    /// The first one, or null; forgets it.
    std::exception_ptr take();
    /// Throws the first one, if there is any.
    void rethrow();

private:
    friend void holdBack(std::exception_ptr exception) noexcept;

    HeldException* outer_;
    std::exception_ptr first_;
};

/// Reports an exception to the current host and leaves it to the thread's HeldException, if there
/// is one; null is none.
void holdBack(std::exception_ptr exception) noexcept;

/// Returns what the work returns. When it throws, the exception is held back, and the result is
/// kOfxStatFailed, null or nothing.
template <typename Work>
auto guarded(Work work) noexcept
{
    using Result = decltype(work());
    try {
        return work();
    } catch (...) {
        holdBack(std::current_exception());
    }
    if constexpr (std::is_same_v<Result, int>) {
        return int{kOfxStatFailed};
    } else if constexpr (!std::is_void_v<Result>) {
        return Result{};
    }
}

/// For destructors: does what may throw an exception that was held back, which has been reported.
template <typename Work>
void quietly(Work work) noexcept
{
    try {
        work();
    } catch (...) {
    }
}

template <auto kFunction>
struct GuardedFunction;
template <typename Result, typename... Arguments, Result (*kFunction)(Arguments...)>
struct GuardedFunction<kFunction> {
    static Result call(Arguments... arguments)
    {
        return guarded([&] { return kFunction(arguments...); });
    }
};
/// A function of a suite, guarded so.
template <auto kFunction>
inline constexpr auto kGuarded = &GuardedFunction<kFunction>::call;

}  // namespace Tesseret::Host
