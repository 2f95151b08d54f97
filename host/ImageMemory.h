#pragma once

/// One block of image memory that a plug-in has allocated through the image-effect suite.

#include <cstddef>
#include <memory>

#include "host/HandleOwner.h"
#include "host/HandleRegistry.h"
#include "ofx/ofxImageEffect.h"

namespace Tesseret::Host {

class EmbeddedHost;

/// Aligned, uninitialised bytes.
class ImageBytes {
public:
    /// Throws std::bad_alloc.
    explicit ImageBytes(std::size_t size);

    std::byte* data() { return data_.get(); }
    std::size_t size() const { return size_; }

private:
    struct Release {
        void operator()(std::byte* data) const;
    };

    std::unique_ptr<std::byte[], Release> data_;
    std::size_t size_;
};

class ImageMemory {
public:
    ImageMemory(const ImageMemory&) = delete;
    ImageMemory& operator=(const ImageMemory&) = delete;

    // Called by the suite; each returns the standard's status.
    static OfxStatus allocate(EmbeddedHost& host, std::size_t bytes, OfxImageMemoryHandle& memory);
    static OfxStatus free(OfxImageMemoryHandle memory);
    static OfxStatus lock(OfxImageMemoryHandle memory, void*& data);
    static OfxStatus unlock(OfxImageMemoryHandle memory);

private:
    ImageMemory(EmbeddedHost& host, std::size_t bytes) : host_(host), bytes_(bytes) {}
    static HandleOwner<ImageMemory>& owner();
    OfxStatus lock(void*& data);
    OfxStatus unlock();

    EmbeddedHost& host_;
    Handle handle_{HandleKind::ImageMemory, this};
    ImageBytes bytes_;
    unsigned int locks_ = 0;
};

}  // namespace Tesseret::Host
