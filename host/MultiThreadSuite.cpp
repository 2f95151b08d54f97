/// "OfxMultiThreadSuite": the pool of the current host, and mutexes.

#include <algorithm>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "host/EmbeddedHost.h"
#include "host/HandleOwner.h"
#include "host/SuiteGuard.h"
#include "host/Suites.h"
#include "host/ThreadPool.h"

namespace Tesseret::Host {

namespace {

OfxStatus multiThread(OfxThreadFunctionV1* function, unsigned int nThreads, void* argument)
{
    EmbeddedHost* const host = EmbeddedHost::current();
    if (!host) return kOfxStatFailed;
    if (!function) return host->badCall("multiThread: a null function", kOfxStatErrValue);
    if (ThreadPool::isInCall()) {
        return host->badCall("multiThread: called from one of its threads", kOfxStatErrExists);
    }
    if (nThreads == 0) return host->badCall("multiThread: no threads asked for", kOfxStatErrValue);
    const unsigned int calls = std::min(nThreads, host->threads());
    return host->behaviour().makeCalls(*host, function, calls, argument);
}

OfxStatus multiThreadNumCPUs(unsigned int* count)
{
    if (!count) return badCall("multiThreadNumCPUs: a null pointer", kOfxStatErrValue);
    EmbeddedHost* const host = EmbeddedHost::current();
    if (!host) return kOfxStatFailed;
    *count = host->behaviour().processorCount(host->threads());
    return kOfxStatOK;
}

OfxStatus multiThreadIndex(unsigned int* index)
{
    if (!index) return badCall("multiThreadIndex: a null pointer", kOfxStatErrValue);
    EmbeddedHost* const host = EmbeddedHost::current();
    if (host) {
        if (const OfxStatus status = host->behaviour().checkThreadIndex()) return status;
    }
    *index = ThreadPool::callIndex();
    return kOfxStatOK;
}

int multiThreadIsSpawnedThread()
{
    return ThreadPool::isInCall() ? 1 : 0;
}

/// Locks nest; an unlock by another thread than the owner is refused.
class Mutex {
public:
    explicit Mutex(int locks) : owner_(std::this_thread::get_id()), locks_(std::max(locks, 0)) {}

    OfxMutexHandle handle() const { return handle_.as<OfxMutexHandle>(); }

    void lock()
    {
        std::unique_lock lock(mutex_);
        freed_.wait(lock, [this] { return isMine(); });
        take();
    }

    bool tryLock()
    {
        const std::lock_guard lock(mutex_);
        if (!isMine()) return false;
        take();
        return true;
    }

    bool unlock()
    {
        const std::lock_guard lock(mutex_);
        if (locks_ == 0 || owner_ != std::this_thread::get_id()) return false;
        if (--locks_ == 0) freed_.notify_one();
        return true;
    }

private:
    bool isMine() const { return locks_ == 0 || owner_ == std::this_thread::get_id(); }
    void take()
    {
        owner_ = std::this_thread::get_id();
        ++locks_;
    }

    Handle handle_{HandleKind::Mutex, this};
    std::mutex mutex_;
    std::condition_variable freed_;
    std::thread::id owner_;
    int locks_;
};

Mutex* findMutex(OfxMutexHandle mutex)
{
    return static_cast<Mutex*>(findObject(HandleKind::Mutex, mutex));
}

HandleOwner<Mutex>& mutexes()
{
    static HandleOwner<Mutex> theMutexes;
    return theMutexes;
}

OfxStatus noMutex()
{
    return badCall("no such mutex", kOfxStatErrBadHandle);
}

OfxStatus mutexCreate(OfxMutexHandle* mutex, int lockCount)
{
    if (!mutex) return badCall("mutexCreate: a null pointer", kOfxStatErrValue);
    *mutex = mutexes().keep(std::make_unique<Mutex>(lockCount)).handle();
    return kOfxStatOK;
}

OfxStatus mutexDestroy(OfxMutexHandle handle)
{
    Mutex* const mutex = findMutex(handle);
    if (!mutex) return noMutex();
    mutexes().destroy(*mutex);
    return kOfxStatOK;
}

OfxStatus mutexLock(OfxMutexHandle handle)
{
    Mutex* const mutex = findMutex(handle);
    if (!mutex) return noMutex();
    mutex->lock();
    return kOfxStatOK;
}

OfxStatus mutexUnLock(OfxMutexHandle handle)
{
    Mutex* const mutex = findMutex(handle);
    if (!mutex) return noMutex();
    return mutex->unlock() ? kOfxStatOK
                           : badCall("mutexUnLock: not locked by this thread", kOfxStatFailed);
}

OfxStatus mutexTryLock(OfxMutexHandle handle)
{
    Mutex* const mutex = findMutex(handle);
    if (!mutex) return noMutex();
    return mutex->tryLock() ? kOfxStatOK : kOfxStatFailed;
}

}  // namespace

const OfxMultiThreadSuiteV1& multiThreadSuite()
{
    static constexpr OfxMultiThreadSuiteV1 kSuite{
        .multiThread = kGuarded<&multiThread>,
        .multiThreadNumCPUs = kGuarded<&multiThreadNumCPUs>,
        .multiThreadIndex = kGuarded<&multiThreadIndex>,
        .multiThreadIsSpawnedThread = &multiThreadIsSpawnedThread,
        .mutexCreate = kGuarded<&mutexCreate>,
        .mutexDestroy = kGuarded<&mutexDestroy>,
        .mutexLock = kGuarded<&mutexLock>,
        .mutexUnLock = kGuarded<&mutexUnLock>,
        .mutexTryLock = kGuarded<&mutexTryLock>,
    };
    return kSuite;
}

}  // namespace Tesseret::Host
