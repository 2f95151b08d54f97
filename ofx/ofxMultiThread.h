#pragma once

/// "OfxMultiThreadSuite" version 1: one function run on several host threads. `multiThread` returns
/// after all calls have returned; only the two arguments of the thread function are reliable
/// inside.

#include "ofx/ofxCore.h"

OfxName kOfxMultiThreadSuite = "OfxMultiThreadSuite";

OFX_BEGIN

typedef struct OfxMutex* OfxMutexHandle;
typedef void(OfxThreadFunctionV1)(unsigned int threadIndex, unsigned int threadMax,
                                  void* customArg);

typedef struct OfxMultiThreadSuiteV1 {
    OfxStatus (*multiThread)(OfxThreadFunctionV1 function, unsigned int nThreads, void* customArg);
    OfxStatus (*multiThreadNumCPUs)(unsigned int* nCPUs);
    OfxStatus (*multiThreadIndex)(unsigned int* threadIndex);
    int (*multiThreadIsSpawnedThread)(void);
    OfxStatus (*mutexCreate)(OfxMutexHandle* mutex, int lockCount);
    OfxStatus (*mutexDestroy)(OfxMutexHandle mutex);
    OfxStatus (*mutexLock)(OfxMutexHandle mutex);
    OfxStatus (*mutexUnLock)(OfxMutexHandle mutex);
    OfxStatus (*mutexTryLock)(OfxMutexHandle mutex);
} OfxMultiThreadSuiteV1;

OFX_END

#ifdef __cplusplus
static_assert(sizeof(OfxMultiThreadSuiteV1) == 9 * sizeof(void*));
#endif
