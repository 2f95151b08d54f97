#pragma once

/// "OfxMultiThreadSuite" version 1: one function run on several host threads. `multiThread` returns
/// after all calls have returned; only the two arguments of the thread function are reliable
/// inside.

#include "ofx/ofxCore.h"

inline constexpr const char* kOfxMultiThreadSuite = "OfxMultiThreadSuite";

extern "C" {

using OfxMutexHandle = struct OfxMutex*;
using OfxThreadFunctionV1 = void(unsigned int threadIndex, unsigned int threadMax, void* customArg);

struct OfxMultiThreadSuiteV1 {
    OfxStatus (*multiThread)(OfxThreadFunctionV1 function, unsigned int nThreads, void* customArg);
    OfxStatus (*multiThreadNumCPUs)(unsigned int* nCPUs);
    OfxStatus (*multiThreadIndex)(unsigned int* threadIndex);
    int (*multiThreadIsSpawnedThread)(void);
    OfxStatus (*mutexCreate)(OfxMutexHandle* mutex, int lockCount);
    OfxStatus (*mutexDestroy)(OfxMutexHandle mutex);
    OfxStatus (*mutexLock)(OfxMutexHandle mutex);
    OfxStatus (*mutexUnLock)(OfxMutexHandle mutex);
    OfxStatus (*mutexTryLock)(OfxMutexHandle mutex);
};

}  // extern "C"

static_assert(sizeof(OfxMultiThreadSuiteV1) == 9 * sizeof(void*));
