#pragma once

/// What the engine may ask of whoever hosts it: threads and image memory, each one small abstract
/// class. Until somebody sets other services there is one thread and no memory.

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
    /// The number of processors, or 0 when it cannot be told. May change between two questions.
    virtual unsigned int numCPUs() = 0;
    /// The index of the calling thread, or 0 when it cannot be told.
    virtual unsigned int threadIndex() = 0;
    /// Whether the calling thread is one that the host made for `run`.
    virtual bool isSpawnedThread() = 0;
    /// Calls function on up to numThreads threads and returns when all calls have. A host that
    /// cannot makes no call.
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

/// The services in force, process-wide. The references stay valid until the next set call.
ThreadService& threadService();
ImageMemoryService& imageMemoryService();

/// Puts other services in force; null brings the default back. The caller keeps ownership, and sets
/// services only while nothing renders.
void setThreadService(ThreadService* service);
void setImageMemoryService(ImageMemoryService* service);

}  // namespace Orvane
