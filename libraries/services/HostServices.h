#pragma once

/// The services that the engine needs from its host: threads and image memory, one small abstract
/// class each. Until services are set there is one thread and no memory.

#include <cstddef>

namespace Orvane {

extern "C" {
/// Runs once per thread: index counts from 0 to count - 1, and count is the number of calls made.
using HostThreadFunction = void(unsigned int index, unsigned int count, void* argument);
}

/// The threads of the host. All operations may be called from any thread.
class ThreadService {
public:
    virtual ~ThreadService() = default;
    /// The number of processors, or 0 when unknown. May change between two calls.
    virtual unsigned int numCPUs() = 0;
    /// The index of the calling thread, or 0 when unknown.
    virtual unsigned int threadIndex() = 0;
    /// Whether the host made the calling thread for `run`.
    virtual bool isSpawnedThread() = 0;
    /// Calls function on up to numThreads threads and returns when all calls have returned. A host
    /// that cannot do so makes no call.
    virtual void run(HostThreadFunction* function, unsigned int numThreads, void* argument) = 0;
};

/// The image memory of the host. Handles are opaque; null is none.
class ImageMemoryService {
public:
    virtual ~ImageMemoryService() = default;
    /// A handle to at least `bytes` bytes, or null.
    virtual void* allocate(std::size_t bytes) = 0;
    /// The address of the block, aligned to 16 bytes and fixed until `unlock`, or null.
    virtual void* lock(void* handle) = 0;
    /// Whether the block is now unlocked.
    virtual bool unlock(void* handle) = 0;
    virtual void free(void* handle) = 0;
};

/// The current services, process-wide. The references stay valid until the next set call.
ThreadService& threadService();
ImageMemoryService& imageMemoryService();

/// Sets the current services; null restores the default. The caller keeps ownership, and sets
/// services only while no render runs.
void setThreadService(ThreadService* service);
void setImageMemoryService(ImageMemoryService* service);

}  // namespace Orvane
