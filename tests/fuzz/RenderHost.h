#pragma once

/// The host of the render fuzzer: shows parts of pictures as images anywhere, counts what it lends,
/// and fails when told to.

#include <atomic>
#include <cstdint>
#include <map>
#include <string>

#include "host/Clip.h"
#include "host/HostBehaviour.h"
#include "tests/fuzz/RenderCase.h"

namespace Tesseret::Fuzz {

class RenderHost final : public Host::HostBehaviour {
public:
    /// What an image of a clip shows: the bounds told to the plug-in, and the first pixel.
    struct View {
        OfxRectI bounds;
        std::byte* data;
    };

    unsigned int threads = 1;
    std::uint32_t freshWord = 0;  ///< every word of new image memory
    std::map<std::string, View, std::less<>> views;
    unsigned int abortFromPoll = 0, refusedAllocation = 0;  ///< counted from 1; 0: none

    std::atomic<unsigned int> polls{0}, allocations{0};
    std::atomic<bool> wasRefused{false}, hasLongRendered{false};
    std::atomic<long> blocksLive{0}, bytesLive{0}, imagesLive{0}, generalLive{0};
    std::atomic<int> badCalls{0};

    /// Before each render.
    void reset()
    {
        polls = allocations = 0;
        wasRefused = hasLongRendered = false;
    }

    void reported(const Host::Report& report) override;
    OfxStatus checkAllocation(const Host::EffectObject* effect, std::size_t bytes) override;
    void memoryAllocated(Host::ImageBytes& bytes) override;
    void memoryFreed(std::size_t bytes) override;
    void generalMemoryAllocated() override { ++generalLive; }
    void generalMemoryFreed() override { --generalLive; }
    void imageFetched(Host::Image& image) override;
    void imageReleased(const Host::Clip& /*clip*/) override { --imagesLive; }
    unsigned int processorCount(unsigned int /*threads*/) override { return threads; }
    bool abortPolled(bool isAborted) override;
};

}  // namespace Tesseret::Fuzz
