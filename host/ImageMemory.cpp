#include "host/ImageMemory.h"

#include <algorithm>
#include <new>

#include "host/EmbeddedHost.h"

namespace Tesseret::Host {

namespace {

/// The standard promises 16; the alignment of the widest registers costs no more.
constexpr std::align_val_t kAlignment{64};

ImageMemory* find(OfxImageMemoryHandle memory)
{
    return static_cast<ImageMemory*>(findObject(HandleKind::ImageMemory, memory));
}

}  // namespace

ImageBytes::ImageBytes(std::size_t size)
    : data_(static_cast<std::byte*>(::operator new[](std::max<std::size_t>(size, 1), kAlignment))),
      size_(size)
{}

void ImageBytes::Release::operator()(std::byte* data) const
{
    ::operator delete[](data, kAlignment);
}

HandleOwner<ImageMemory>& ImageMemory::owner()
{
    static HandleOwner<ImageMemory> theOwner;
    return theOwner;
}

OfxStatus ImageMemory::allocate(EmbeddedHost& host, std::size_t bytes, OfxImageMemoryHandle& memory)
{
    std::unique_ptr<ImageMemory> block;
    try {
        block.reset(new ImageMemory(host, bytes));
    } catch (const std::bad_alloc&) {
        return kOfxStatErrMemory;
    }
    host.behaviour().memoryAllocated(block->bytes_);
    memory = owner().keep(std::move(block)).handle_.as<OfxImageMemoryHandle>();
    return kOfxStatOK;
}

OfxStatus ImageMemory::free(OfxImageMemoryHandle memory)
{
    ImageMemory* const block = find(memory);
    if (!block) return badCall("imageMemoryFree: no such block", kOfxStatErrBadHandle);
    if (block->locks_ > 0) block->host_.report(Report::Kind::Note, "imageMemoryFree: still locked");
    block->host_.behaviour().memoryFreed(block->bytes_.size());
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
    if (const OfxStatus status = host_.behaviour().checkLock(bytes_, locks_ > 0)) {
        host_.report(Report::Kind::Note, "imageMemoryLock: refused");
        return status;
    }
    ++locks_;
    data = bytes_.data();
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
    return kOfxStatOK;
}

}  // namespace Tesseret::Host
