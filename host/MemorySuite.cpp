/// "OfxMemorySuite": general memory. Blocks are looked up by address, so that a foreign pointer or
/// a second free is refused.

#include <algorithm>
#include <cstddef>
#include <memory>
#include <mutex>
#include <new>
#include <unordered_map>

#include "host/EmbeddedHost.h"
#include "host/SuiteGuard.h"
#include "host/Suites.h"

namespace Tesseret::Host {

namespace {

struct Block {
    std::unique_ptr<std::byte[]> data;  ///< aligned as every object of the language may be
    EmbeddedHost* host;
};

std::mutex& blocksMutex()
{
    static std::mutex theMutex;
    return theMutex;
}

std::unordered_map<void*, Block>& blocks()
{
    static std::unordered_map<void*, Block> theBlocks;
    return theBlocks;
}

OfxStatus memoryAlloc(void* handle, std::size_t bytes, void** data)
{
    if (!data) return badCall("memoryAlloc: a null pointer for the result", kOfxStatErrValue);
    *data = nullptr;
    if (handle && !findObject(HandleKind::Effect, handle)) {
        return badCall("memoryAlloc: no such effect", kOfxStatErrBadHandle);
    }
    EmbeddedHost* const host = EmbeddedHost::current();
    std::unique_ptr<std::byte[]> made(new (std::nothrow)
                                          std::byte[std::max<std::size_t>(bytes, 1)]);
    if (!made) return kOfxStatErrMemory;
    *data = made.get();
    if (host) host->behaviour().generalMemoryAllocated();
    const std::lock_guard lock(blocksMutex());
    blocks().emplace(*data, Block{std::move(made), host});
    return kOfxStatOK;
}

OfxStatus memoryFree(void* data)
{
    if (!data) return kOfxStatOK;
    const std::lock_guard lock(blocksMutex());
    const auto found = blocks().find(data);
    if (found == blocks().end()) {
        return badCall("memoryFree: no such block", kOfxStatErrBadHandle);
    }
    if (found->second.host) found->second.host->behaviour().generalMemoryFreed();
    blocks().erase(found);
    return kOfxStatOK;
}

}  // namespace

const OfxMemorySuiteV1& memorySuite()
{
    static constexpr OfxMemorySuiteV1 kSuite{kGuarded<&memoryAlloc>, kGuarded<&memoryFree>};
    return kSuite;
}

}  // namespace Tesseret::Host
