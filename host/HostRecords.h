#pragma once

/// What a host counted and, when asked to, recorded of a plug-in's calls; for tests and statistics.

#include <cstddef>
#include <string>
#include <vector>

#include "host/PropertySet.h"

namespace Tesseret::Host {

/// One write through the property suite, as the plug-in sent it.
struct PropertyWrite {
    std::string
        set;  ///< the property set's name: "effect", "clip Source", "param seed", "page Texture"
    std::string property;
    int index = 0;
    PropertyValue value;
    OfxStatus status = kOfxStatOK;
};

struct SuiteFetch {
    std::string name;
    int version = 0;
    bool found = false;
};

/// One action that the host sent, and its answer.
struct ActionRecord {
    std::string action;
    OfxStatus status = kOfxStatOK;
};

/// Since the last reset, except the two `live` values, which are what is alive now.
struct Counters {
    unsigned int imagesFetched = 0;  ///< successful fetches
    unsigned int fetchCalls = 0;     ///< all of them
    unsigned int imagesReleased = 0;
    unsigned int allocations = 0;  ///< image memory: all calls, failed ones included
    unsigned int locks = 0;        ///< all calls, failed ones included
    unsigned int blocksLive = 0;
    std::size_t bytesLive = 0;
    std::size_t bytesPeak = 0;
    unsigned int memoryBlocksLive = 0;  ///< of the memory suite
    unsigned int multiThreadCalls = 0;
    unsigned int abortPolls = 0;
    unsigned int badCalls = 0;
};

}  // namespace Tesseret::Host
