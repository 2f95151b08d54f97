#include "render/PluginFinder.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "render/JobError.h"
#include "render/TextList.h"

namespace Tesseret::Render {

namespace fs = std::filesystem;

namespace {

constexpr const char* kBundleName = "Tesseret.ofx.bundle";
constexpr const char* kSystemFolder = "/usr/OFX/Plugins";

std::vector<fs::path> searchFolders()
{
    std::vector<fs::path> folders;
    std::error_code ignored;
    const fs::path program = fs::read_symlink("/proc/self/exe", ignored);
    if (!program.empty()) folders.push_back(program.parent_path().parent_path());
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

}  // namespace

fs::path findPlugin()
{
    std::string looked;
    for (const fs::path& folder : searchFolders()) {
        std::error_code ignored;
        if (fs::exists(folder / kBundleName, ignored)) return folder / kBundleName;
        appendItem(looked, ", ", folder.string());
    }
    throw UsageError(std::string(kBundleName) + " was not found in " + looked +
                     "; name it with --plugin");
}

OfxPlugin& choosePlugin(const Host::PluginLibrary& library)
{
    const bool isOurs = std::ranges::any_of(library.plugins(), [](const OfxPlugin* plugin) {
        return plugin->pluginIdentifier == kTesseretIdentifier;
    });
    return isOurs ? library.plugin(kTesseretIdentifier) : library.plugin();
}

}  // namespace Tesseret::Render
