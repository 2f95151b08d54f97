#pragma once

#include <span>

namespace Orvane {

/// Small functions over the host's threads (libraries/services/HostServices.h).

/// The number of threads that share a pass: what the host reports, at least 1.
int hostNumCPUs();

/// The index of the calling thread: inside a call of `runOnThreads` the index of that call,
/// elsewhere what the host reports.
int hostThreadIndex();

/// The number of calls that share the calling thread's pass; 0 outside `runOnThreads`.
int hostThreadCount();

/// Whether the calling thread already works for `runOnThreads`, according to the host or to our own
/// record: a host may run the calls on the calling thread and report that it is not spawned.
bool hostIsSpawnedThread();

/// The maximum number of arguments that reach the function.
inline constexpr std::size_t kMaxThreadArguments = 6;

using ThreadWork = void (*)(std::span<void* const> arguments);

/// Runs work(arguments) once on each of `hostNumCPUs()` host threads and returns when all calls
/// have returned. Arguments beyond kMaxThreadArguments are dropped. If the host refuses, nothing
/// runs.
void runOnThreads(ThreadWork work, std::span<void* const> arguments);

}  // namespace Orvane
