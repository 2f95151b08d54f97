/// The image memory of "OfxImageEffectSuite": blocks that move whenever they may, and start as
/// noise.

#include <stdlib.h>
#include <string.h>

#include "tests/strictHost/Strict.h"

enum { kNoise = 0xA5 };

static void* need(void* memory)
{
    if (!memory) abort();
    return memory;
}

typedef struct Memory {
    Object object;
    size_t bytes;
    unsigned char* data;
    int locks;
} Memory;

static Memory* memories[4096];
static int memoryCount;

OfxStatus imageMemoryAlloc(OfxImageEffectHandle effect, size_t bytes, OfxImageMemoryHandle* handle)
{
    if (effect && !objectOf(EFFECT, effect, "imageMemoryAlloc")) return kOfxStatErrBadHandle;
    if (!handle) problem("imageMemoryAlloc: a null pointer for the handle");
    if (!handle) return kOfxStatErrValue;
    *handle = NULL;
    if (memoryCount == (int)(sizeof memories / sizeof *memories)) return kOfxStatErrMemory;
    Memory* const memory = need(calloc(1, sizeof *memory));
    memory->bytes = bytes;
    addObject(&memory->object, MEMORY);
    memories[memoryCount++] = memory;
    *handle = (OfxImageMemoryHandle)(void*)memory;
    return kOfxStatOK;
}

OfxStatus imageMemoryLock(OfxImageMemoryHandle handle, void** data)
{
    Memory* const memory = objectOf(MEMORY, handle, "imageMemoryLock");
    if (!data) problem("imageMemoryLock: a null pointer for the address");
    if (!memory || !data) return kOfxStatErrBadHandle;
    if (!memory->data) {
        memory->data = need(aligned_alloc(16, (memory->bytes + 16) / 16 * 16));
        memset(memory->data, kNoise, memory->bytes);
    } else if (memory->locks == 0) {  // an unlocked block may move
        unsigned char* const moved = need(aligned_alloc(16, (memory->bytes + 16) / 16 * 16));
        memcpy(moved, memory->data, memory->bytes);
        free(memory->data);
        memory->data = moved;
    }
    ++memory->locks;
    *data = memory->data;
    return kOfxStatOK;
}

OfxStatus imageMemoryUnlock(OfxImageMemoryHandle handle)
{
    Memory* const memory = objectOf(MEMORY, handle, "imageMemoryUnlock");
    if (!memory) return kOfxStatErrBadHandle;
    if (memory->locks == 0) problem("imageMemoryUnlock: the block is not locked");
    if (memory->locks > 0) --memory->locks;
    return kOfxStatOK;
}

OfxStatus imageMemoryFree(OfxImageMemoryHandle handle)
{
    Memory* const memory = objectOf(MEMORY, handle, "imageMemoryFree");
    if (!memory) return kOfxStatErrBadHandle;
    free(memory->data);
    memory->data = NULL;
    memory->object.isLive = false;
    return kOfxStatOK;
}

void checkFreed(void)
{
    int count = 0;
    for (int i = 0; i < memoryCount; ++i) count += memories[i]->object.isLive;
    if (count > 0) problem("%d blocks of image memory are not freed", count);
    if (servicesHeld() > 0) problem("%d blocks or mutexes are not freed", servicesHeld());
}
