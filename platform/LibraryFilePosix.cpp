#include <dlfcn.h>

#include "platform/LibraryFile.h"

namespace Orvane {

LibraryFile openLibrary(const std::filesystem::path& file)
{
    if (void* const handle = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) return {handle, {}};
    const char* const text = ::dlerror();
    std::string reason = text ? text : "unknown reason";
    const std::string start = file.string() + ": ";
    if (reason.compare(0, start.size(), start) == 0) reason.erase(0, start.size());
    return {nullptr, reason};
}

void closeLibrary(void* handle)
{
    ::dlclose(handle);
}

void* findExport(void* handle, const char* name)
{
    return ::dlsym(handle, name);
}

const char* bundleFolder()
{
#if defined(__APPLE__)
    return "MacOS";
#else
    return sizeof(void*) == 8 ? "Linux-x86-64" : "Linux-x86";
#endif
}

}  // namespace Orvane
