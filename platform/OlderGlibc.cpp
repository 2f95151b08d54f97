/// Lets the plug-in load with older C libraries than the one it was built with.
///
/// The static C++ runtime refers to a few functions by the version of the C library it was compiled
/// with, as new as 2.36. The definitions below take their place inside the plug-in. They forward to
/// the oldest version of the same function, or do without what older libraries lack. Before glibc
/// 2.34 these functions are in libpthread.so.0 and libdl.so.2, so the plug-in needs those two
/// libraries as well; a newer glibc still has them, empty. scripts/check-symbols.py finds what is
/// missing here.

#include <cstdint>

#include <dlfcn.h>
#include <link.h>
#include <pthread.h>

// The first version of the C library for this processor.
#if defined(__x86_64__)
#define OLDEST "GLIBC_2.2.5"
#else
#error "state the first version of glibc for this processor"
#endif

// These are the names that the runtime refers to, and the addresses that the loader gives.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming,performance-no-int-to-ptr)

extern "C" {

__asm__(".symver oldestPthreadOnce, pthread_once@" OLDEST);
int oldestPthreadOnce(pthread_once_t* once, void (*function)());

int pthread_once(pthread_once_t* once, void (*function)())
{
    return oldestPthreadOnce(once, function);
}

__asm__(".symver oldestKeyCreate, __pthread_key_create@" OLDEST);
int oldestKeyCreate(pthread_key_t* key, void (*destructor)(void*));

int __pthread_key_create(pthread_key_t* key, void (*destructor)(void*))
{
    return oldestKeyCreate(key, destructor);
}

__asm__(".symver oldestDlopen, dlopen@" OLDEST);
void* oldestDlopen(const char* file, int mode);

void* dlopen(const char* file, int mode) noexcept
{
    return oldestDlopen(file, mode);
}

__asm__(".symver oldestDlsym, dlsym@" OLDEST);
void* oldestDlsym(void* library, const char* name);

void* dlsym(void* library, const char* name) noexcept
{
    return oldestDlsym(library, name);
}

/// Since 2.32 a hint that a process has one thread, so that counts of references need not be
/// atomic. 0 is "unknown", and correct at any time.
char __libc_single_threaded = 0;

#ifdef DLFO_STRUCT_HAS_EH_DBASE

/// What the unwinder asks for each stack frame: the library that contains the code at
/// `dlfo_map_start`, which is the only one filled in on entry, and its table of frames.
static int findLibrary(dl_phdr_info* info, std::size_t, void* argument)
{
    auto& found = *static_cast<dl_find_object*>(argument);
    const auto code = reinterpret_cast<std::uintptr_t>(found.dlfo_map_start);
    std::uintptr_t begin = UINTPTR_MAX, end = 0, table = 0;
    bool holdsCode = false;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr)& part = info->dlpi_phdr[i];
        const std::uintptr_t address = info->dlpi_addr + part.p_vaddr;
        if (part.p_type == PT_GNU_EH_FRAME) table = address;
        if (part.p_type != PT_LOAD) continue;
        begin = address < begin ? address : begin;
        end = address + part.p_memsz > end ? address + part.p_memsz : end;
        holdsCode = holdsCode || (address <= code && code - address < part.p_memsz);
    }
    if (!holdsCode) return 0;
    found.dlfo_map_start = reinterpret_cast<void*>(begin);
    found.dlfo_map_end = reinterpret_cast<void*>(end);
    found.dlfo_eh_frame = reinterpret_cast<void*>(table);
    return 1;
}

/// Since 2.35. Returns 0, or -1 when no library with a table of frames contains the code.
int _dl_find_object(void* code, dl_find_object* result) noexcept
{
    *result = {};
    result->dlfo_map_start = code;
    return dl_iterate_phdr(findLibrary, result) != 0 && result->dlfo_eh_frame != nullptr ? 0 : -1;
}

#endif

}  // extern "C"

// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming,performance-no-int-to-ptr)
