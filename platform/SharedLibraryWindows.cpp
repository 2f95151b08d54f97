#include <windows.h>

#include "platform/SharedLibrary.h"

namespace Orvane {

void* findFunction(const char* name, std::span<const char* const> libraries)
{
    for (const char* file : libraries) {
        HMODULE library = GetModuleHandleA(file);
        if (library == nullptr) library = LoadLibraryA(file);
        if (library == nullptr) continue;
        if (auto* function = reinterpret_cast<void*>(GetProcAddress(library, name))) {
            return function;
        }
    }
    return nullptr;
}

}  // namespace Orvane
