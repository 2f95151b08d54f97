#include "host/Plugin.h"

#include <cstring>
#include <random>
#include <string>

#include "host/HostError.h"
#include "ofx/ofxImageEffect.h"
#include "platform/LibraryFile.h"

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

/// A copy of the file that is loaded only here, alone in a new folder.
fs::path temporaryCopy(const fs::path& file)
{
    std::error_code error;
    const fs::path parent = fs::temp_directory_path(error);
    fs::path folder;
    std::random_device random;
    do {
        folder = parent / ("tesseret-plugin-" + std::to_string(random()));
        // False without an error where another process has one of this name.
    } while (!error && !fs::create_directory(folder, error));
    if (error) refuse(file, "no temporary copy can be made: " + error.message());
    fs::copy_file(file, folder / file.filename(), error);
    if (error) {
        const std::string reason = error.message();
        fs::remove_all(folder, error);
        refuse(file, "it cannot be copied: " + reason);
    }
    return folder / file.filename();
}

}  // namespace

std::string_view bundleArchitecture()
{
    return Orvane::bundleFolder();
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
    if (library_ && !kStaysMapped) Orvane::closeLibrary(library_);
    removeCopy();
}

/// Removed at once where the system allows that for a loaded library, else once it is closed.
void PluginLibrary::removeCopy()
{
    if (copy_.empty()) return;
    std::error_code error;
    fs::remove_all(copy_.parent_path(), error);
    if (!error) copy_.clear();
}

void PluginLibrary::open(const fs::path& file, Copy copy)
{
    std::error_code error;
    if (!fs::exists(file, error)) refuse(file, "no such file");
    // An absolute path: the loader would search a bare name in the system's directories.
    file_ = fs::absolute(fs::is_directory(file) ? fileInBundle(file) : file);
    if (copy == Copy::Private) copy_ = temporaryCopy(file_);
    const Orvane::LibraryFile opened = Orvane::openLibrary(copy_.empty() ? file_ : copy_);
    library_ = opened.handle;
    removeCopy();
    if (!library_) refuse(file, opened.reason);
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
    return Orvane::findExport(library_, name);
}

}  // namespace Tesseret::Host
