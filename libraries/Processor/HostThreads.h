#pragma once

#include <span>

namespace Orvane {

/// Small functions over the host's threads (libraries/services/HostServices.h).

/// How many threads a pass is spread over: what the host reports, at least 1.
int hostNumCPUs();

/// The index of the calling thread: inside a call of `runOnThreads` the one that call was made
/// with, elsewhere what the host reports.
int hostThreadIndex();

/// How many calls the pass that the calling thread runs in consists of; 0 outside `runOnThreads`.
int hostThreadCount();

/// Whether the calling thread works for `runOnThreads` already, by the host's word or by our own
/// knowledge: a host may run the calls on the calling thread and report that as no spawned thread.
bool hostIsSpawnedThread();

/// At most so many arguments reach the function.
inline constexpr std::size_t kMaxThreadArguments = 6;

using ThreadWork = void (*)(std::span<void* const> arguments);

/// Runs work(arguments) once on each of `hostNumCPUs()` host threads and returns when all have.
/// More arguments than kMaxThreadArguments are cut off. A host that refuses runs nothing.
void runOnThreads(ThreadWork work, std::span<void* const> arguments);

}  // namespace Orvane
