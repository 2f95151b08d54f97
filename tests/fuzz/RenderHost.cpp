#include "tests/fuzz/RenderHost.h"

#include <cstring>

#include "host/Image.h"
#include "host/ImageMemory.h"

namespace Tesseret::Fuzz {
namespace {

/// More than the cases need that end soon.
constexpr long kMemoryLimit = 4L << 20;
/// Renders are aborted then, so that no case takes long.
constexpr unsigned int kMostPolls = 400;

}  // namespace

void RenderHost::reported(const Host::Report& report)
{
    if (report.kind == Host::Report::Kind::BadCall) ++badCalls;
}

OfxStatus RenderHost::checkAllocation(const Host::EffectObject* /*effect*/, std::size_t bytes)
{
    const bool isLarge =
        bytes > std::size_t{kMemoryLimit} || bytesLive + static_cast<long>(bytes) > kMemoryLimit;
    if (++allocations != refusedAllocation && !isLarge) return kOfxStatOK;
    wasRefused = true;
    return kOfxStatErrMemory;
}

void RenderHost::memoryAllocated(Host::ImageBytes& bytes)
{
    ++blocksLive;
    bytesLive += static_cast<long>(bytes.size());
    std::size_t done = 0;
    for (; done + sizeof freshWord <= bytes.size(); done += sizeof freshWord) {
        std::memcpy(bytes.data() + done, &freshWord, sizeof freshWord);
    }
    std::memcpy(bytes.data() + done, &freshWord, bytes.size() - done);
}

void RenderHost::memoryFreed(std::size_t bytes)
{
    --blocksLive;
    bytesLive -= static_cast<long>(bytes);
}

void RenderHost::imageFetched(Host::Image& image)
{
    ++imagesLive;
    const auto view = views.find(image.clip().name());
    if (view == views.end()) return;
    const OfxRectI& bounds = view->second.bounds;
    for (const char* property : {kOfxImagePropBounds, kOfxImagePropRegionOfDefinition}) {
        image.assign(property, {bounds.x1, bounds.y1, bounds.x2, bounds.y2});
    }
    image.assign(kOfxImagePropData, {static_cast<void*>(view->second.data)});
}

bool RenderHost::abortPolled(bool isAborted)
{
    const unsigned int poll = ++polls;
    if (poll > kMostPolls) hasLongRendered = true;
    return isAborted || poll > kMostPolls || (abortFromPoll != 0 && poll >= abortFromPoll);
}

}  // namespace Tesseret::Fuzz
