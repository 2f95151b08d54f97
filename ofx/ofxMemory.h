#pragma once

/// "OfxMemorySuite" version 1: general memory, with an effect handle or null.

#include "ofx/ofxCore.h"

OfxName kOfxMemorySuite = "OfxMemorySuite";

OFX_BEGIN

typedef struct OfxMemorySuiteV1 {
    OfxStatus (*memoryAlloc)(void* handle, size_t nBytes, void** allocatedData);
    OfxStatus (*memoryFree)(void* allocatedData);
} OfxMemorySuiteV1;

OFX_END

#ifdef __cplusplus
static_assert(sizeof(OfxMemorySuiteV1) == 2 * sizeof(void*));
#endif
