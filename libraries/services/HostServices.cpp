#include "libraries/services/HostServices.h"

#include <atomic>

namespace Orvane {
namespace {

class OneThread final : public ThreadService {
public:
    unsigned int numCPUs() override { return 1; }
    unsigned int threadIndex() override { return 0; }
    bool isSpawnedThread() override { return false; }
    void run(HostThreadFunction* function, unsigned int, void* argument) override
    {
        function(0, 1, argument);
    }
};

class NoMemory final : public ImageMemoryService {
public:
    void* allocate(std::size_t) override { return nullptr; }
    void* lock(void*) override { return nullptr; }
    bool unlock(void*) override { return false; }
    void free(void*) override {}
};

OneThread oneThread;
NoMemory noMemory;

// Atomic because one instance may be described while another one renders.
std::atomic<ThreadService*> currentThreads{&oneThread};
std::atomic<ImageMemoryService*> currentMemory{&noMemory};

}  // namespace

ThreadService& threadService()
{
    return *currentThreads.load(std::memory_order_acquire);
}

ImageMemoryService& imageMemoryService()
{
    return *currentMemory.load(std::memory_order_acquire);
}

void setThreadService(ThreadService* service)
{
    currentThreads.store(service != nullptr ? service : &oneThread, std::memory_order_release);
}

void setImageMemoryService(ImageMemoryService* service)
{
    currentMemory.store(service != nullptr ? service : &noMemory, std::memory_order_release);
}

}  // namespace Orvane
