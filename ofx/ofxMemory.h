#pragma once

/// "OfxMemorySuite" version 1: general memory, with an effect handle or null.

#include "ofx/ofxCore.h"

inline constexpr const char* kOfxMemorySuite = "OfxMemorySuite";

extern "C" {

struct OfxMemorySuiteV1 {
    OfxStatus (*memoryAlloc)(void* handle, std::size_t nBytes, void** allocatedData);
    OfxStatus (*memoryFree)(void* allocatedData);
};

}  // extern "C"

static_assert(sizeof(OfxMemorySuiteV1) == 2 * sizeof(void*));
