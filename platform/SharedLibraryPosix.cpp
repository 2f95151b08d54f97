#include <dlfcn.h>

#include "platform/SharedLibrary.h"

namespace Orvane {

void* findFunction(const char* name, std::span<const char* const> libraries)
{
    if (void* function = dlsym(RTLD_DEFAULT, name)) return function;
    for (const char* file : libraries) {
        // A host may have loaded the library without making its names global.
        void* library = dlopen(file, RTLD_LAZY | RTLD_NOLOAD);
        if (library == nullptr) library = dlopen(file, RTLD_LAZY | RTLD_LOCAL);
        if (library == nullptr) continue;
        if (void* function = dlsym(library, name)) return function;
    }
    return nullptr;
}

}  // namespace Orvane
