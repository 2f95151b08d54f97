#pragma once

/// Shared libraries with plug-ins in them. Every error is a HostError with the file and the reason.

#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

#include "ofx/ofxCore.h"

namespace Tesseret::Host {

class PluginLibrary {
public:
    enum class Copy {
        Shared,   ///< the file itself: loaded twice it is one library with one set of variables
        Private,  ///< a temporary copy with variables of its own, for tests
    };

    /// Loads a shared library, or from a directory NAME.ofx.bundle the file Contents/ARCH/NAME.ofx,
    /// with all symbols resolved at once and none shared. Throws HostError.
    static std::shared_ptr<PluginLibrary> load(const std::filesystem::path& file,
                                               Copy copy = Copy::Shared);
    ~PluginLibrary();
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;

    /// The shared library inside a bundle, or the file itself.
    const std::filesystem::path& file() const { return file_; }
    /// The image effects of API version 1 in it, in the library's order.
    const std::vector<OfxPlugin*>& plugins() const { return plugins_; }
    /// By index or identifier; throws HostError when there is none.
    OfxPlugin& plugin(std::size_t index = 0) const;
    OfxPlugin& plugin(std::string_view identifier) const;
    /// An exported function or variable; null when there is none.
    void* symbol(const char* name) const;

private:
    PluginLibrary() = default;
    void open(const std::filesystem::path& file, Copy copy);
    void collectPlugins();
    void removeCopy();

    std::filesystem::path file_;
    std::filesystem::path copy_;  ///< of the file, while it is to be removed; else empty
    void* library_ = nullptr;
    std::vector<OfxPlugin*> plugins_;
};

/// The name of this system's folder inside a bundle, for example "Linux-x86-64".
std::string_view bundleArchitecture();

}  // namespace Tesseret::Host
