/// The memory, multi-thread, message and interact suites.

#include <stdlib.h>
#include <string.h>

#include "tests/strictHost/Strict.h"

// General memory

static void* blocks[1024];

static void** blockAt(const void* memory)
{
    for (size_t i = 0; i < sizeof blocks / sizeof *blocks; ++i) {
        if (blocks[i] == memory) return &blocks[i];
    }
    return NULL;
}

static OfxStatus memoryAlloc(void* handle, size_t bytes, void** data)
{
    if (handle && !objectOf(EFFECT, handle, "memoryAlloc")) return kOfxStatErrBadHandle;
    void** const place = blockAt(NULL);
    if (!data) problem("memoryAlloc: a null pointer for the block");
    if (!data || !place) return kOfxStatErrMemory;
    *data = *place = malloc(bytes ? bytes : 1);
    return *data ? kOfxStatOK : kOfxStatErrMemory;
}

static OfxStatus memoryFree(void* data)
{
    void** const place = data ? blockAt(data) : NULL;
    if (!place) {
        problem("memoryFree: no such block");
        return kOfxStatErrBadHandle;
    }
    free(data);
    *place = NULL;
    return kOfxStatOK;
}

const OfxMemorySuiteV1 memorySuite = {memoryAlloc, memoryFree};

// Threads: the calls one after the other, as the standard allows

static bool isInCall;
static unsigned int callIndex;

static OfxStatus multiThread(OfxThreadFunctionV1 function, unsigned int threads, void* argument)
{
    if (isInCall) {
        problem("multiThread: called from one of its own threads");
        return kOfxStatErrExists;
    }
    if (!function || threads == 0) {
        problem("multiThread: %s", function ? "no threads asked for" : "a null function");
        return kOfxStatErrValue;
    }
    const unsigned int calls = threads < 3 ? threads : 3;
    isInCall = true;
    for (callIndex = 0; callIndex < calls; ++callIndex) function(callIndex, calls, argument);
    callIndex = 0;
    isInCall = false;
    return kOfxStatOK;
}

static OfxStatus multiThreadNumCPUs(unsigned int* count)
{
    if (!count) problem("multiThreadNumCPUs: a null pointer");
    if (!count) return kOfxStatErrValue;
    *count = 3;
    return kOfxStatOK;
}

static OfxStatus multiThreadIndex(unsigned int* index)
{
    if (!index) problem("multiThreadIndex: a null pointer");
    if (!index) return kOfxStatErrValue;
    *index = callIndex;
    return kOfxStatOK;
}

static int multiThreadIsSpawnedThread(void)
{
    return 0;
}

typedef struct Mutex {
    Object object;
    int locks;
} Mutex;

static int mutexes;

static OfxStatus mutexCreate(OfxMutexHandle* handle, int lockCount)
{
    if (!handle) problem("mutexCreate: a null pointer");
    Mutex* const mutex = handle ? calloc(1, sizeof *mutex) : NULL;
    if (!mutex) return kOfxStatErrMemory;
    mutex->locks = lockCount;
    addObject(&mutex->object, MUTEX);
    ++mutexes;
    *handle = (OfxMutexHandle)(void*)mutex;
    return kOfxStatOK;
}

static OfxStatus mutexDestroy(OfxMutexHandle handle)
{
    Mutex* const mutex = objectOf(MUTEX, handle, "mutexDestroy");
    if (!mutex) return kOfxStatErrBadHandle;
    if (mutex->locks > 0) problem("mutexDestroy: it is locked");
    mutex->object.isLive = false;
    --mutexes;
    return kOfxStatOK;
}

static OfxStatus mutexLock(OfxMutexHandle handle)
{
    Mutex* const mutex = objectOf(MUTEX, handle, "mutexLock");
    if (!mutex) return kOfxStatErrBadHandle;
    ++mutex->locks;
    return kOfxStatOK;
}

static OfxStatus mutexUnLock(OfxMutexHandle handle)
{
    Mutex* const mutex = objectOf(MUTEX, handle, "mutexUnLock");
    if (!mutex) return kOfxStatErrBadHandle;
    if (mutex->locks == 0) problem("mutexUnLock: it is not locked");
    if (mutex->locks > 0) --mutex->locks;
    return kOfxStatOK;
}

const OfxMultiThreadSuiteV1 multiThreadSuite = {
    multiThread, multiThreadNumCPUs, multiThreadIndex, multiThreadIsSpawnedThread,
    mutexCreate, mutexDestroy,       mutexLock,        mutexUnLock,
    mutexLock};

int servicesHeld(void)
{
    int count = mutexes;
    for (size_t i = 0; i < sizeof blocks / sizeof *blocks; ++i) count += blocks[i] != NULL;
    return count;
}

// Messages

static OfxStatus message(void* handle, const char* type, const char* id, const char* format, ...)
{
    const char* const types[] = {kOfxMessageFatal,   kOfxMessageError, kOfxMessageWarning,
                                 kOfxMessageMessage, kOfxMessageLog,   kOfxMessageQuestion};
    (void)id;
    if (handle && !objectOf(EFFECT, handle, "message")) return kOfxStatErrBadHandle;
    bool isKnown = false;
    for (int i = 0; type && i < 6; ++i) isKnown = isKnown || strcmp(type, types[i]) == 0;
    if (!isKnown || !format) {
        problem("message: %s", isKnown ? "a null format" : "an unknown type");
        return kOfxStatErrValue;
    }
    // The host cannot know the arguments, so only formats that need none are certain to be right.
    for (const char* c = strchr(format, '%'); c; c = strchr(c + 2, '%')) {
        if (c[1] != '%' && strcmp(format, "%s") != 0) {
            problem("message: a per-cent sign in the format \"%s\"", format);
            break;
        }
        if (!c[1]) break;
    }
    if (strcmp(type, kOfxMessageError) == 0 || strcmp(type, kOfxMessageFatal) == 0) {
        problem("message: the plug-in posts an error: %s", format);
    }
    return strcmp(type, kOfxMessageQuestion) == 0 ? kOfxStatReplyDefault : kOfxStatOK;
}

const OfxMessageSuiteV1 messageSuite = {message};

// There are no interacts, so no handle can be right.

static OfxStatus noInteract(OfxInteractHandle handle)
{
    (void)handle;
    problem("interact suite: no such interact");
    return kOfxStatErrBadHandle;
}

static OfxStatus noInteractSet(OfxInteractHandle handle, OfxPropertySetHandle* set)
{
    if (set) *set = NULL;
    return noInteract(handle);
}

const OfxInteractSuiteV1 interactSuite = {noInteract, noInteract, noInteractSet};
