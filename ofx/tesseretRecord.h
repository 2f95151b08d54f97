#pragma once

/// "TesseretRecordSuite" version 1: takes the blocks that an instance recorded out of it, and gives
/// them to another instance, so that a shot can be rendered in parts. Only a host that offers
/// "TesseretObserverSuite" is asked for it; the embedded host offers both. Without it the plug-in
/// makes no calls.
///
/// Every call comes on the thread that runs the render action. Any member may be null.

#include <cstddef>

#include "ofx/ofxImageEffect.h"

inline constexpr const char* kTesseretRecordSuite = "TesseretRecordSuite";

extern "C" {

struct TesseretRecordSuiteV1 {
    /// Asked where "temporalConsistancy" is on and the instance has no blocks to repeat, except at
    /// frame 0, which always chooses new ones. Returns the bytes of an earlier `recordMade`, valid
    /// until the render ends, and sets `size`; null when there are none.
    const void* (*recordOffered)(OfxImageEffectHandle effect, std::size_t* size);
    /// After such bytes: whether the instance repeats them now. Otherwise they were not those of a
    /// record, or there is no memory, and the render chooses new blocks.
    void (*recordTaken)(OfxImageEffectHandle effect, int isUsable);
    /// Returns non-zero when `recordMade` is to be called after a render that chose new blocks.
    int (*wantsRecord)(OfxImageEffectHandle effect);
    /// The bytes are valid during the call.
    void (*recordMade)(OfxImageEffectHandle effect, const void* bytes, std::size_t size);
};

}  // extern "C"

static_assert(sizeof(TesseretRecordSuiteV1) == 4 * sizeof(void*));
