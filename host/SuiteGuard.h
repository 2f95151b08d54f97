#pragma once

/// A suite is called through C: no exception may pass through the plug-in that called it. An
/// exception of the host, a listener or a source of pictures is held back in the suite's function,
/// which fails, and rethrown by the host once the plug-in's entry point has returned.

#include <exception>
#include <type_traits>

#include "ofx/ofxCore.h"

namespace Tesseret::Host {

/// Collects the exceptions held back on this thread while it is the newest object of its kind
/// there.
class HeldException {
public:
    HeldException();
    ~HeldException();
    HeldException(const HeldException&) = delete;
    HeldException& operator=(const HeldException&) = delete;

    /// Returns the first one and forgets it; null when there is none.
    std::exception_ptr take();
    /// Rethrows the first one, if there is any.
    void rethrow();

private:
    friend void holdBack(std::exception_ptr exception) noexcept;

    HeldException* outer_;
    std::exception_ptr first_;
};

/// Reports an exception to the current host and passes it to the thread's HeldException, if there
/// is one; null does nothing.
void holdBack(std::exception_ptr exception) noexcept;

/// Returns the result of the work. When it throws, the exception is held back, and the result is
/// kOfxStatFailed, null or void.
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

/// For destructors: runs work that may rethrow a held exception, which has been reported already.
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
/// A suite function with this guard.
template <auto kFunction>
inline constexpr auto kGuarded = &GuardedFunction<kFunction>::call;

}  // namespace Tesseret::Host
