#include "products/OFX/Support/Services.h"

#include "libraries/services/HostServices.h"
#include "products/OFX/Support/Host.h"

namespace Orvane {
namespace {

thread_local OfxImageEffectHandle runningEffect = nullptr;

/// One call of `run`, shared by all threads of the host.
struct Spread {
    HostThreadFunction* function;
    void* argument;
    OfxImageEffectHandle effect;
};

extern "C" void runShare(unsigned int index, unsigned int count, void* spread)
{
    const auto& [function, argument, effect] = *static_cast<const Spread*>(spread);
    const RunningEffect running(effect);
    function(index, count, argument);
}

class HostThreadService final : public ThreadService {
public:
    unsigned int numCPUs() override
    {
        unsigned int count = 0;
        return suite().multiThreadNumCPUs(&count) == kOfxStatOK ? count : 0;
    }
    unsigned int threadIndex() override
    {
        unsigned int index = 0;
        return suite().multiThreadIndex(&index) == kOfxStatOK ? index : 0;
    }
    bool isSpawnedThread() override { return suite().multiThreadIsSpawnedThread() != 0; }
    void run(HostThreadFunction* function, unsigned int numThreads, void* argument) override
    {
        Spread spread{.function = function, .argument = argument, .effect = runningEffect};
        suite().multiThread(runShare, numThreads, &spread);
    }

private:
    static const OfxMultiThreadSuiteV1& suite() { return *hostDescription().suites.multiThread; }
};

class HostImageMemoryService final : public ImageMemoryService {
public:
    void* allocate(std::size_t bytes) override
    {
        OfxImageMemoryHandle memory = nullptr;
        const OfxStatus status = suite().imageMemoryAlloc(nullptr, bytes, &memory);
        // Some hosts refuse image memory without an effect, though the standard allows a null one.
        // A lack of memory (8) is not tried again.
        if (memory == nullptr && status == kOfxStatErrBadHandle && runningEffect != nullptr) {
            suite().imageMemoryAlloc(runningEffect, bytes, &memory);
        }
        return memory;
    }
    void* lock(void* handle) override
    {
        void* data = nullptr;
        return suite().imageMemoryLock(typed(handle), &data) == kOfxStatOK ? data : nullptr;
    }
    bool unlock(void* handle) override
    {
        return suite().imageMemoryUnlock(typed(handle)) == kOfxStatOK;
    }
    void free(void* handle) override { suite().imageMemoryFree(typed(handle)); }

private:
    static const OfxImageEffectSuiteV1& suite() { return *hostDescription().suites.imageEffect; }
    static OfxImageMemoryHandle typed(void* handle)
    {
        return static_cast<OfxImageMemoryHandle>(handle);
    }
};

HostThreadService threads;
HostImageMemoryService imageMemory;

}  // namespace

void useHostServices()
{
    setThreadService(&threads);
    setImageMemoryService(&imageMemory);
}

RunningEffect::RunningEffect(OfxImageEffectHandle effect) : outer_(runningEffect)
{
    runningEffect = effect;
}

RunningEffect::~RunningEffect()
{
    runningEffect = outer_;
}

}  // namespace Orvane
