#include "host/ImageMemory.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "host/EmbeddedHost.h"

namespace Tesseret::Host {

namespace {

/// The standard promises 16; what the processor's widest registers want costs no more.
constexpr std::align_val_t kAlignment{64};
/// A new block begins with so much noise; all of it would cost more than it shows.
constexpr std::size_t kNoiseBytes = 4096;
constexpr int kNoise = 0xA5;

ImageMemory* find(OfxImageMemoryHandle memory)
{
    return static_cast<ImageMemory*>(findObject(HandleKind::ImageMemory, memory));
}

bool reserve(EmbeddedHost& host, std::size_t bytes)
{
    auto& counts = host.counts();
    const std::size_t live = counts.bytesLive.fetch_add(bytes) + bytes;
    if (host.quirks().memoryLimit && live > *host.quirks().memoryLimit) {
        counts.bytesLive.fetch_sub(bytes);
        return false;
    }
    std::size_t peak = counts.bytesPeak.load();
    while (peak < live && !counts.bytesPeak.compare_exchange_weak(peak, live)) {
    }
    return true;
}

}  // namespace

void ImageMemory::Release::operator()(std::byte* data) const
{
    ::operator delete[](data, kAlignment);
}

HandleOwner<ImageMemory>& ImageMemory::owner()
{
    static HandleOwner<ImageMemory> theOwner;
    return theOwner;
}

ImageMemory::Storage ImageMemory::makeStorage(std::size_t bytes)
{
    return Storage(static_cast<std::byte*>(
        ::operator new[](std::max<std::size_t>(bytes, 1), kAlignment, std::nothrow)));
}

OfxStatus ImageMemory::allocate(EmbeddedHost& host, std::size_t bytes, OfxImageMemoryHandle& memory)
{
    const unsigned int call = host.counts().allocations.fetch_add(1) + 1;
    if (call == host.quirks().failAllocation || !reserve(host, bytes)) {
        host.report(Report::Kind::Note, "imageMemoryAlloc: refused " + std::to_string(bytes) +
                                            " bytes, call " + std::to_string(call));
        return kOfxStatErrMemory;
    }
    Storage storage = makeStorage(bytes);
    if (!storage) {
        host.counts().bytesLive.fetch_sub(bytes);
        return kOfxStatErrMemory;
    }
    if (host.quirks().memoryPoisoned) {
        std::memset(storage.get(), kNoise, std::min(bytes, kNoiseBytes));
    }
    std::unique_ptr<ImageMemory> block(new ImageMemory(host));
    block->bytes_ = bytes;
    block->storage_ = std::move(storage);
    memory = owner().keep(std::move(block)).handle_.as<OfxImageMemoryHandle>();
    host.counts().blocksLive.fetch_add(1);
    return kOfxStatOK;
}

OfxStatus ImageMemory::free(OfxImageMemoryHandle memory)
{
    ImageMemory* const block = find(memory);
    if (!block) return badCall("imageMemoryFree: no such block", kOfxStatErrBadHandle);
    if (block->locks_ > 0) block->host_.report(Report::Kind::Note, "imageMemoryFree: still locked");
    block->host_.counts().bytesLive.fetch_sub(block->bytes_);
    block->host_.counts().blocksLive.fetch_sub(1);
    owner().destroy(*block);
    return kOfxStatOK;
}

OfxStatus ImageMemory::lock(OfxImageMemoryHandle memory, void*& data)
{
    ImageMemory* const block = find(memory);
    return block ? block->lock(data)
                 : badCall("imageMemoryLock: no such block", kOfxStatErrBadHandle);
}

OfxStatus ImageMemory::lock(void*& data)
{
    const unsigned int call = host_.counts().locks.fetch_add(1) + 1;
    if (call == host_.quirks().failLock) {
        host_.report(Report::Kind::Note, "imageMemoryLock: refused, call " + std::to_string(call));
        return kOfxStatErrMemory;
    }
    if (moves_) move();
    ++locks_;
    data = storage_.get();
    return kOfxStatOK;
}

OfxStatus ImageMemory::unlock(OfxImageMemoryHandle memory)
{
    ImageMemory* const block = find(memory);
    return block ? block->unlock()
                 : badCall("imageMemoryUnlock: no such block", kOfxStatErrBadHandle);
}

OfxStatus ImageMemory::unlock()
{
    if (locks_ == 0) return host_.badCall("imageMemoryUnlock: not locked", kOfxStatErrValue);
    --locks_;
    moves_ = locks_ == 0 && host_.quirks().memoryMoves;
    return kOfxStatOK;
}

void ImageMemory::move()
{
    moves_ = false;
    Storage elsewhere = makeStorage(bytes_);
    if (!elsewhere) return;
    std::memcpy(elsewhere.get(), storage_.get(), bytes_);
    storage_ = std::move(elsewhere);
}

}  // namespace Tesseret::Host
