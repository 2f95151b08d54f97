#pragma once

/// One block of image memory, as a plug-in has it through the image-effect suite.

#include <cstddef>
#include <memory>

#include "host/HandleOwner.h"
#include "host/HandleRegistry.h"
#include "ofx/ofxImageEffect.h"

namespace Tesseret::Host {

class EmbeddedHost;

class ImageMemory {
public:
    ImageMemory(const ImageMemory&) = delete;
    ImageMemory& operator=(const ImageMemory&) = delete;

    // The suite's side; each counts, obeys the quirks and answers the standard's statuses.
    static OfxStatus allocate(EmbeddedHost& host, std::size_t bytes, OfxImageMemoryHandle& memory);
    static OfxStatus free(OfxImageMemoryHandle memory);
    static OfxStatus lock(OfxImageMemoryHandle memory, void*& data);
    static OfxStatus unlock(OfxImageMemoryHandle memory);

private:
    struct Release {
        void operator()(std::byte* data) const;
    };
    using Storage = std::unique_ptr<std::byte[], Release>;

    explicit ImageMemory(EmbeddedHost& host) : host_(host) {}
    static HandleOwner<ImageMemory>& owner();
    static Storage makeStorage(std::size_t bytes);
    OfxStatus lock(void*& data);
    OfxStatus unlock();
    void move();

    EmbeddedHost& host_;
    Handle handle_{HandleKind::ImageMemory, this};
    std::size_t bytes_ = 0;
    Storage storage_;
    unsigned int locks_ = 0;
    bool moves_ = false;  ///< the next lock finds the contents at another address
};

}  // namespace Tesseret::Host
