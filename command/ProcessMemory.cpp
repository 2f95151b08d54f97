#include "command/ProcessMemory.h"

#include <cstdint>
#include <cstdlib>

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace Tesseret::Command {

namespace {

std::uintptr_t heapEnd()
{
    return reinterpret_cast<std::uintptr_t>(::sbrk(0));
}

}  // namespace

void keepMemory()
{
    constexpr std::size_t kLargePage = 2 << 20;
    constexpr std::size_t kStep = 128 << 20;    // of addresses; pages are taken when they are used
    constexpr std::size_t kLargest = 32 << 20;  // the most that the C library keeps
    ::mallopt(M_ARENA_MAX, 1);
    ::mallopt(M_MMAP_THRESHOLD, kLargest);
    ::mallopt(M_TRIM_THRESHOLD, 2 * kStep);
    ::mallopt(M_TOP_PAD, kStep);
    const std::uintptr_t before = heapEnd();
    void* volatile step = std::malloc(kLargePage);  // volatile: compilers leave out unused memory
    std::free(step);
    const std::uintptr_t first = (before + kLargePage - 1) / kLargePage * kLargePage;
    // Without effect where the C library keeps its memory elsewhere, or the system has no such
    // pages.
    if (heapEnd() > first) {
        ::madvise(reinterpret_cast<void*>(first), heapEnd() - first, MADV_HUGEPAGE);
    }
}

}  // namespace Tesseret::Command
