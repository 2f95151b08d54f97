#include "libraries/Processor/HostThreads.h"

#include <algorithm>
#include <array>
#include <limits>

#include "libraries/services/HostServices.h"

namespace Orvane {
namespace {

/// The two arguments of the host's call of the thread function. Only these are reliable: some hosts
/// report another index or another processor count while the threads run.
struct Share {
    unsigned int index = 0;
    unsigned int count = 0;  ///< 0 outside a call
};

thread_local Share currentShare;

struct Block {
    ThreadWork work;
    std::array<void*, kMaxThreadArguments> arguments;
    std::size_t count;
};

int toInt(unsigned int value)
{
    constexpr unsigned int kMax = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(value, kMax));
}

extern "C" void trampoline(unsigned int index, unsigned int count, void* argument)
{
    const auto& block = *static_cast<const Block*>(argument);
    const Share outer = currentShare;
    currentShare = {index, std::max(count, 1u)};
    block.work({block.arguments.data(), block.count});
    currentShare = outer;
}

}  // namespace

int hostNumCPUs()
{
    return std::max(toInt(threadService().numCPUs()), 1);
}

int hostThreadIndex()
{
    return toInt(currentShare.count > 0 ? currentShare.index : threadService().threadIndex());
}

int hostThreadCount()
{
    return toInt(currentShare.count);
}

bool hostIsSpawnedThread()
{
    return currentShare.count > 0 || threadService().isSpawnedThread();
}

void runOnThreads(ThreadWork work, std::span<void* const> arguments)
{
    Block block{work, {}, std::min(arguments.size(), kMaxThreadArguments)};
    std::copy_n(arguments.begin(), block.count, block.arguments.begin());
    threadService().run(trampoline, static_cast<unsigned int>(hostNumCPUs()), &block);
}

}  // namespace Orvane
