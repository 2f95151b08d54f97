#include "host/Plugin.h"

#include <cstring>
#include <string>

#include <dlfcn.h>
#include <unistd.h>

#include "host/HostError.h"
#include "ofx/ofxImageEffect.h"

namespace Tesseret::Host {

namespace fs = std::filesystem;

namespace {

/// Under the address sanitizer libraries stay mapped: its reports need their symbols, and what a
/// library's own C++ runtime never frees would count as leaked.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kStaysMapped = true;
#elif defined(__has_feature)
constexpr bool kStaysMapped = bool(__has_feature(address_sanitizer));
#else
constexpr bool kStaysMapped = false;
#endif

[[noreturn]] void refuse(const fs::path& file, const std::string& reason)
{
    throw HostError("cannot load plug-in " + file.string() + ": " + reason);
}

/// Contents/ARCH/NAME.ofx of a directory NAME.ofx.bundle.
fs::path fileInBundle(const fs::path& given)
{
    const fs::path bundle = given.has_filename() ? given : given.parent_path();
    const std::string name = bundle.filename().string();
    constexpr std::string_view kEnding = ".ofx.bundle";
    if (name.size() <= kEnding.size() ||
        name.compare(name.size() - kEnding.size(), kEnding.size(), kEnding) != 0) {
        refuse(given, "a directory, but not a bundle NAME.ofx.bundle");
    }
    const std::string library = name.substr(0, name.size() - std::strlen(".bundle"));
    fs::path file = bundle / "Contents" / std::string(bundleArchitecture()) / library;
    if (!fs::exists(file)) {
        refuse(given,
               "the bundle has no Contents/" + std::string(bundleArchitecture()) + "/" + library);
    }
    return file;
}

/// A copy of the file that is loaded only here.
fs::path temporaryCopy(const fs::path& file)
{
    std::string name = (fs::temp_directory_path() / "tesseret-plugin-XXXXXX").string();
    const int descriptor = ::mkstemp(name.data());
    if (descriptor < 0) refuse(file, "no temporary copy can be made");
    ::close(descriptor);
    std::error_code error;
    fs::copy_file(file, name, fs::copy_options::overwrite_existing, error);
    if (error) {
        fs::remove(name);
        refuse(file, "it cannot be copied: " + error.message());
    }
    return name;
}

/// The loader's message without the file name at its start.
std::string loaderReason(const fs::path& file)
{
    const char* const text = ::dlerror();
    std::string reason = text ? text : "unknown reason";
    const std::string start = file.string() + ": ";
    if (reason.compare(0, start.size(), start) == 0) reason.erase(0, start.size());
    return reason;
}

}  // namespace

std::string_view bundleArchitecture()
{
#if defined(__APPLE__)
    return "MacOS";
#else
    return sizeof(void*) == 8 ? "Linux-x86-64" : "Linux-x86";
#endif
}

std::shared_ptr<PluginLibrary> PluginLibrary::load(const fs::path& file, Copy copy)
{
    // The constructor is private, so make_shared cannot reach it.
    std::shared_ptr<PluginLibrary> library(new PluginLibrary());
    library->open(file, copy);
    library->collectPlugins();
    return library;
}

PluginLibrary::~PluginLibrary()
{
    if (library_ && !kStaysMapped) ::dlclose(library_);
}

void PluginLibrary::open(const fs::path& file, Copy copy)
{
    std::error_code error;
    if (!fs::exists(file, error)) refuse(file, "no such file");
    // An absolute path: the loader would search a bare name in the system's directories.
    file_ = fs::absolute(fs::is_directory(file) ? fileInBundle(file) : file);
    const fs::path loaded = copy == Copy::Private ? temporaryCopy(file_) : file_;
    library_ = ::dlopen(loaded.c_str(), RTLD_NOW | RTLD_LOCAL);
    const std::string reason = library_ ? "" : loaderReason(loaded);
    if (copy == Copy::Private) fs::remove(loaded, error);
    if (!library_) refuse(file, reason);
}

void PluginLibrary::collectPlugins()
{
    const auto count = reinterpret_cast<int (*)()>(symbol("OfxGetNumberOfPlugins"));
    const auto get = reinterpret_cast<OfxPlugin* (*)(int)>(symbol("OfxGetPlugin"));
    if (!count) refuse(file_, "it does not export OfxGetNumberOfPlugins");
    if (!get) refuse(file_, "it does not export OfxGetPlugin");
    std::string otherApi;
    for (int i = 0; i < count(); ++i) {
        OfxPlugin* const plugin = get(i);
        if (!plugin || !plugin->pluginApi || !plugin->pluginIdentifier || !plugin->mainEntry) {
            refuse(file_, "its plug-in record " + std::to_string(i) + " is incomplete");
        }
        const bool known = std::strcmp(plugin->pluginApi, kOfxImageEffectPluginApi) == 0 &&
                           plugin->apiVersion == kOfxImageEffectPluginApiVersion;
        if (known) {
            plugins_.push_back(plugin);
        } else {
            otherApi =
                std::string(plugin->pluginApi) + " version " + std::to_string(plugin->apiVersion);
        }
    }
    if (!plugins_.empty()) return;
    refuse(file_, otherApi.empty() ? "it holds no plug-in"
                                   : "it is written for " + otherApi + ", not " +
                                         kOfxImageEffectPluginApi + " version 1");
}

OfxPlugin& PluginLibrary::plugin(std::size_t index) const
{
    if (index >= plugins_.size()) {
        throw HostError(file_.string() + " holds " + std::to_string(plugins_.size()) +
                        " plug-ins, none of number " + std::to_string(index));
    }
    return *plugins_[index];
}

OfxPlugin& PluginLibrary::plugin(std::string_view identifier) const
{
    for (OfxPlugin* const each : plugins_) {
        if (identifier == each->pluginIdentifier) return *each;
    }
    throw HostError(file_.string() + " holds no plug-in " + std::string(identifier));
}

void* PluginLibrary::symbol(const char* name) const
{
    return ::dlsym(library_, name);
}

}  // namespace Tesseret::Host
