#include "files/PictureLibrary.h"

#include <mutex>
#include <system_error>

#include <dlfcn.h>

#include "files/FileError.h"
#include "files/FileThreads.h"

namespace Tesseret::Files {

namespace fs = std::filesystem;

namespace {

/// The module lies beside the program where that was built, else in the installation's folder.
fs::path moduleFile()
{
    constexpr const char* kName = "tesseret_oiio.so";
    std::error_code ignored;
    const fs::path folder = fs::read_symlink("/proc/self/exe", ignored).parent_path();
    const fs::path installed = folder.parent_path() / "lib" / "tesseret" / kName;
    return !fs::exists(folder / kName, ignored) && fs::exists(installed, ignored) ? installed
                                                                                  : folder / kName;
}

PictureLibrary& load(const fs::path& neededBy)
{
    // Never closed: its libraries keep threads and state of their own.
    void* const module = ::dlopen(moduleFile().c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const entry = module == nullptr ? nullptr : ::dlsym(module, kPictureLibraryEntry);
    if (entry == nullptr) {
        throw FileError(neededBy, std::string("OpenImageIO cannot be loaded: ") + ::dlerror());
    }
    return *reinterpret_cast<PictureLibraryEntry>(entry)();
}

}  // namespace

PictureLibrary& pictureLibrary(const fs::path& neededBy)
{
    static std::mutex mutex;
    static PictureLibrary* library = nullptr;
    static unsigned threads = 0;
    const std::lock_guard lock(mutex);
    if (library == nullptr) library = &load(neededBy);
    if (const unsigned chosen = chosenThreads(); chosen != threads) {
        library->useThreads(chosen);
        threads = chosen;
    }
    return *library;
}

}  // namespace Tesseret::Files
