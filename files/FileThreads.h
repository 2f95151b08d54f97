#pragma once

#include <cstddef>
#include <functional>

namespace Tesseret::Files {

/// Sets the number of threads that read and write one picture file; 0 is one for each processor
/// that this process may use.
void useThreads(unsigned count);
/// As set; 0 before.
unsigned chosenThreads();

/// Calls `work` with each number below `count`, on these threads. After an exception the rest is
/// left out; the exception of the lowest number that failed is thrown.
void inParallel(std::size_t count, const std::function<void(std::size_t)>& work);

}  // namespace Tesseret::Files
