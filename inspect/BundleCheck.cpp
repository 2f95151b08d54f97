#include "inspect/BundleCheck.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <map>
#include <span>
#include <string_view>

#include "host/Plugin.h"
#include "inspect/PropertyList.h"

namespace Tesseret::Inspect {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kEnding = ".ofx.bundle";
/// The folders that hosts look for in Contents, one for each system.
constexpr std::array<std::string_view, 6> kArchitectures{
    "Linux-x86-64", "Linux-x86", "Win64", "Win32", "MacOS", "MacOS-x86-64"};
constexpr std::array<std::string_view, 4> kOtherFolders{"Resources", "MacOS", "_CodeSignature",
                                                        "Presets"};

/// The names of a folder's entries, sorted; none when it cannot be read.
std::vector<std::string> entriesOf(const fs::path& folder)
{
    std::vector<std::string> names;
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored))
        names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
}

template <typename List>
bool contains(const List& list, std::string_view name)
{
    return std::ranges::find(list, name) != list.end();
}

void checkInfo(const fs::path& contents, const std::string& library, Report& report)
{
    const fs::path file = contents / "Info.plist";
    const std::string about = "Contents/Info.plist";
    std::error_code ignored;
    if (!fs::exists(file, ignored)) {
        report.error(about, "it is missing; macOS and some hosts elsewhere need it",
                     "write one with CFBundleExecutable " + library);
        return;
    }
    try {
        const std::map<std::string, std::string> values = readPropertyList(file);
        const auto valueOf = [&](const char* key) {
            const auto found = values.find(key);
            return found == values.end() ? std::string() : found->second;
        };
        if (valueOf("CFBundleExecutable") != library) {
            report.error(about, "CFBundleExecutable is \"" + valueOf("CFBundleExecutable") + "\"",
                         "set it to " + library);
        }
        if (valueOf("CFBundleIdentifier").empty())
            report.warning(about, "CFBundleIdentifier is missing", "set it, as com.maker.product");
        if (valueOf("CFBundlePackageType") != "BNDL") {
            report.warning(about,
                           "CFBundlePackageType is \"" + valueOf("CFBundlePackageType") + "\"",
                           "set it to BNDL");
        }
    } catch (const PropertyListError& error) {
        report.error(about, error.what(), "write it as an XML property list");
    }
}

/// The folders in Contents; reports those that no host looks at.
std::vector<std::string> checkFolders(const fs::path& contents, Report& report)
{
    std::vector<std::string> architectures;
    for (const std::string& name : entriesOf(contents)) {
        std::error_code ignored;
        if (!fs::is_directory(contents / name, ignored)) continue;
        if (contains(kArchitectures, name)) {
            architectures.push_back(name);
        } else if (!contains(kOtherFolders, name)) {
            report.warning(
                "Contents/" + name, "no host looks into this folder",
                "name it after a system, for example " + std::string(Host::bundleArchitecture()));
        }
    }
    report.facts["systems"] = architectures;
    return architectures;
}

fs::path checkContents(const fs::path& bundle, const std::string& library, Report& report)
{
    const fs::path contents = bundle / "Contents";
    std::error_code ignored;
    if (!fs::is_directory(contents, ignored)) {
        report.error("Contents", "the folder is missing",
                     "put the library into Contents/" + std::string(Host::bundleArchitecture()));
        return {};
    }
    checkFolders(contents, report);
    checkInfo(contents, library, report);
    const std::string system(Host::bundleArchitecture());
    fs::path file = contents / system / library;
    if (fs::is_regular_file(file, ignored)) return file;
    const std::vector<std::string> others = entriesOf(contents / system);
    const std::string found = others.empty() ? "" : "; its folder holds " + others.front();
    report.error("Contents/" + system + "/" + library, "the library is missing" + found,
                 "it has to be called as the bundle, without \".bundle\"");
    return {};
}

/// The width and height of a PNG; zeros when it is none.
std::array<std::uint32_t, 2> pngSize(const fs::path& file)
{
    std::array<unsigned char, 24> start{};
    std::ifstream stream(file, std::ios::binary);
    stream.read(reinterpret_cast<char*>(start.data()), start.size());
    constexpr std::array<unsigned char, 8> kSignature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    if (!stream || !std::ranges::equal(kSignature, std::span(start).first<8>())) return {0, 0};
    const auto number = [&](std::size_t at) {
        return std::uint32_t{start[at]} << 24 | std::uint32_t{start[at + 1]} << 16 |
               std::uint32_t{start[at + 2]} << 8 | std::uint32_t{start[at + 3]};
    };
    return {number(16), number(20)};
}

void checkIcon(const fs::path& bundle, const std::string& identifier, Report& report)
{
    const std::string about = "Contents/Resources/" + identifier + ".png";
    std::error_code ignored;
    if (!fs::exists(bundle / about, ignored)) {
        const bool hasDrawing = fs::exists((bundle / about).replace_extension(".svg"), ignored);
        report.warning(about,
                       hasDrawing ? "the icon is there as SVG only, which not every host reads"
                                  : "the icon is missing",
                       "add a square PNG of at least 128 x 128 pixels with this name");
        return;
    }
    const auto [width, height] = pngSize(bundle / about);
    const std::string size = std::to_string(width) + " x " + std::to_string(height);
    if (width == 0 || height == 0) {
        report.error(about, "it is not a PNG", "replace it");
    } else if (width != height || width < 128) {
        report.warning(about, "it has " + size + " pixels",
                       "make it square, of at least 128 x 128 pixels");
    } else {
        report.facts["icons"].push_back({{"file", about}, {"size", size}});
    }
}

}  // namespace

fs::path checkBundle(const fs::path& given, Report& report)
{
    std::error_code ignored;
    if (!fs::is_directory(given, ignored)) {
        report.warning(given.filename().string(), "it is a library outside a bundle",
                       "hosts find it in NAME.ofx.bundle/Contents/" +
                           std::string(Host::bundleArchitecture()) + "/NAME.ofx");
        return given;
    }
    const std::string name = given.filename().string();
    if (!name.ends_with(kEnding) || name.size() == kEnding.size()) {
        report.error(name, "it is a folder, but not called NAME.ofx.bundle", "rename it");
        return {};
    }
    const std::string library = name.substr(0, name.size() - std::string_view(".bundle").size());
    return checkContents(given, library, report);
}

void checkIcons(const fs::path& bundle, const std::vector<std::string>& identifiers, Report& report)
{
    std::error_code ignored;
    if (!fs::is_directory(bundle, ignored)) return;
    for (const std::string& identifier : identifiers) checkIcon(bundle, identifier, report);
}

}  // namespace Tesseret::Inspect
