#pragma once

#include <cstddef>
#include <memory>

namespace Orvane::Engine {

/// Unlocks a block of image memory and returns it to the host.
struct ImageBlockRelease {
    void operator()(std::byte* data) const;
};

/// A locked block of the host's image memory, aligned to 16 bytes.
using ImageBlock = std::unique_ptr<std::byte, ImageBlockRelease>;

/// A block for rows x columns elements of `elementBytes` each, contents undefined; null when the
/// host has no memory for it.
ImageBlock allocateImageBlock(std::size_t columns, std::size_t rows, std::size_t elementBytes);

}  // namespace Orvane::Engine
