#include "render/PluginSession.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

#include "host/HostError.h"
#include "render/JobError.h"
#include "render/ParameterText.h"

namespace Tesseret::Render {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kContextPrefix = "OfxImageEffectContext";
constexpr const char* kBundleName = "Tesseret.ofx.bundle";
constexpr const char* kSystemFolder = "/usr/OFX/Plugins";

std::vector<fs::path> searchFolders()
{
    std::vector<fs::path> folders;
    std::error_code ignored;
    const fs::path program = fs::read_symlink("/proc/self/exe", ignored);
    if (!program.empty()) {
        // In the build folder, and as installed with any prefix.
        folders.push_back(program.parent_path().parent_path());
        folders.push_back(program.parent_path().parent_path() / "OFX" / "Plugins");
    }
    const char* const variable = std::getenv("OFX_PLUGIN_PATH");
    std::string_view rest = variable == nullptr ? "" : variable;
    while (!rest.empty()) {
        const std::size_t end = rest.find_first_of(":;");
        if (end != 0) folders.emplace_back(rest.substr(0, end));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    folders.emplace_back(kSystemFolder);
    return folders;
}

fs::path findPlugin()
{
    std::string looked;
    for (const fs::path& folder : searchFolders()) {
        std::error_code ignored;
        if (fs::exists(folder / kBundleName, ignored)) return folder / kBundleName;
        appendItem(looked, ", ", folder.string());
    }
    throw UsageError(std::string(kBundleName) + " was not found in " + looked +
                     "; give its path with --plugin");
}

/// The library's effect that this program is made for, or else its first. Throws `HostError`.
OfxPlugin& choosePlugin(const Host::PluginLibrary& library)
{
    const bool isOurs = std::ranges::any_of(library.plugins(), [](const OfxPlugin* plugin) {
        return plugin->pluginIdentifier == kTesseretIdentifier;
    });
    return isOurs ? library.plugin(kTesseretIdentifier) : library.plugin();
}

}  // namespace

PluginSession::PluginSession(std::filesystem::path plugin, Host::HostOptions options)
    : file_(plugin.empty() ? findPlugin() : std::move(plugin)), host_(std::move(options))
{
    try {
        std::shared_ptr<Host::PluginLibrary> library = Host::PluginLibrary::load(file_);
        OfxPlugin& chosen = choosePlugin(*library);
        effect_ = std::make_unique<Host::Effect>(host_, std::move(library), chosen);
        effect_->start();
    } catch (const Host::HostError& error) {
        throw UsageError(error.what());
    }
}

const Host::ContextDescription& PluginSession::describe(const std::string& context)
{
    const std::vector<std::string> contexts = effect_->description().contexts;
    if (std::ranges::find(contexts, longContextName(context)) == contexts.end()) {
        std::string known;
        for (const std::string& name : contexts) {
            appendItem(known, ", ", shortContextName(name));
        }
        throw UsageError("no context \"" + context + "\"; the plug-in has " + known);
    }
    try {
        return effect_->describeInContext(longContextName(context));
    } catch (const Host::HostError& error) {
        throw UsageError(error.what());
    }
}

std::string longContextName(const std::string& name)
{
    return std::string(kContextPrefix) + name;
}

std::string shortContextName(const std::string& name)
{
    return name.starts_with(kContextPrefix) ? name.substr(kContextPrefix.size()) : name;
}

}  // namespace Tesseret::Render
