#include "engine/map/ImageBlock.h"

#include <cstring>
#include <limits>

#include "libraries/services/HostServices.h"

namespace Orvane::Engine {
namespace {

/// Every block starts with a header whose first word is its handle. What follows it is aligned to
/// 16 bytes.
constexpr std::size_t kHeaderBytes = 16;
static_assert(kHeaderBytes >= sizeof(void*));

/// Half the address space, so that offsets into a block fit a ptrdiff_t.
constexpr std::size_t kMaxBytes = std::numeric_limits<std::size_t>::max() / 2 - kHeaderBytes;

}  // namespace

void ImageBlockRelease::operator()(std::byte* data) const
{
    void* handle = nullptr;
    std::memcpy(&handle, data - kHeaderBytes, sizeof handle);
    ImageMemoryService& memory = imageMemoryService();
    if (memory.unlock(handle)) memory.free(handle);
}

ImageBlock allocateImageBlock(std::size_t columns, std::size_t rows, std::size_t elementBytes)
{
    if (columns > kMaxBytes / elementBytes) return nullptr;
    const std::size_t rowBytes = columns * elementBytes;
    if (rowBytes != 0 && rows > kMaxBytes / rowBytes) return nullptr;
    ImageMemoryService& memory = imageMemoryService();
    void* handle = memory.allocate(rows * rowBytes + kHeaderBytes);
    if (handle == nullptr) return nullptr;
    void* block = memory.lock(handle);
    if (block == nullptr) {
        memory.free(handle);
        return nullptr;
    }
    std::memcpy(block, &handle, sizeof handle);
    return ImageBlock(static_cast<std::byte*>(block) + kHeaderBytes);
}

}  // namespace Orvane::Engine
