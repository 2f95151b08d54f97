#include "inspect/LibraryCheck.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <string_view>

#include "host/Plugin.h"
#include "inspect/ElfFile.h"

namespace Tesseret::Inspect {

namespace {

constexpr std::string_view kGlibcPrefix = "GLIBC_";
/// The functions that a host looks up.
constexpr std::array<std::string_view, 3> kHostFunctions{"OfxGetNumberOfPlugins", "OfxGetPlugin",
                                                         "OfxSetHost"};

std::vector<int> numbersOf(const std::string& version)
{
    std::vector<int> numbers;
    const char* next = version.data();
    const char* const end = next + version.size();
    while (next < end) {
        int number = 0;
        const auto [rest, error] = std::from_chars(next, end, number);
        if (error != std::errc()) break;
        numbers.push_back(number);
        next = rest + 1;
    }
    return numbers;
}

std::string names(const std::vector<std::string>& all, std::size_t most)
{
    std::string text;
    for (std::size_t i = 0; i < std::min(all.size(), most); ++i)
        text += (i == 0 ? "" : ", ") + all[i];
    if (all.size() > most) text += " and " + std::to_string(all.size() - most) + " more";
    return text;
}

bool isForThisMachine(const ElfFile& elf)
{
    const std::string_view folder = Host::bundleArchitecture();
    if (folder == "Linux-x86-64") return elf.machine == "x86-64" && elf.bits == 64;
    return folder != "Linux-x86" || elf.machine == "x86";
}

/// False when a host cannot find the plug-ins.
bool checkExports(const ElfFile& elf, const std::string& about, Report& report)
{
    bool isPlugin = true;
    for (std::size_t i = 0; i < 2; ++i) {
        if (std::ranges::find(elf.exports, kHostFunctions[i]) != elf.exports.end()) continue;
        report.error(about, "it does not export " + std::string(kHostFunctions[i]),
                     "define it with C linkage and default visibility");
        isPlugin = false;
    }
    std::vector<std::string> others;
    std::ranges::copy_if(elf.exports, std::back_inserter(others), [](const std::string& name) {
        return std::ranges::find(kHostFunctions, name) == kHostFunctions.end();
    });
    report.facts["exports"] = elf.exports;
    if (others.empty()) return isPlugin;
    report.warning(about,
                   "it also exports " + names(others, 3) + ", which other plug-ins may share",
                   "compile with -fvisibility=hidden and link with a version script");
    return isPlugin;
}

/// The symbols of each version of the C library.
std::map<std::string, std::vector<std::string>> glibcSymbols(const ElfFile& elf)
{
    std::map<std::string, std::vector<std::string>> symbols;
    for (const ElfImport& import : elf.imports) {
        if (import.version.starts_with(kGlibcPrefix))
            symbols[import.version.substr(kGlibcPrefix.size())].push_back(import.name);
    }
    return symbols;
}

void checkGlibc(const ElfFile& elf, const std::string& newestAllowed, const std::string& about,
                Report& report)
{
    const auto symbols = glibcSymbols(elf);
    const auto newest = std::ranges::max_element(
        symbols, [](const auto& a, const auto& b) { return isNewer(b.first, a.first); });
    if (newest == symbols.end()) return;
    report.facts["glibc"] = {{"version", newest->first}, {"symbols", newest->second}};
    if (!isNewer(newest->first, newestAllowed)) return;
    std::vector<std::string> tooNew;
    for (const auto& [version, functions] : symbols) {
        if (!isNewer(version, newestAllowed)) continue;
        for (const std::string& function : functions) {
            tooNew.push_back(function);
            tooNew.back().append("@").append(version);
        }
    }
    report.warning(about,
                   "it needs glibc " + newest->first + " (" + names(tooNew, 4) + "), newer than " +
                       newestAllowed,
                   "build it on an older system, or use older versions of these functions");
}

}  // namespace

bool isNewer(const std::string& version, const std::string& other)
{
    return numbersOf(version) > numbersOf(other);
}

bool checkLibrary(const std::filesystem::path& file, const std::string& newestGlibc, Report& report)
{
    const std::string about = file.filename().string();
    try {
        const ElfFile elf = readElf(file);
        report.facts["machine"] = elf.machine;
        report.facts["needs"] = elf.needed;
        const bool isLoadable = elf.isSharedLibrary && isForThisMachine(elf);
        if (!isLoadable) {
            report.error(about,
                         "it is " + std::string(elf.isSharedLibrary ? "" : "no shared library, ") +
                             "for " + elf.machine,
                         "build a shared library for " + std::string(Host::bundleArchitecture()));
        }
        const bool isPlugin = checkExports(elf, about, report);
        checkGlibc(elf, newestGlibc, about, report);
        if (elf.hasExecutableStack) {
            report.warning(about, "it makes the stack executable, which hardened systems refuse",
                           "link with -z noexecstack");
        }
        return isLoadable && isPlugin;
    } catch (const ElfError& error) {
        report.error(about, error.what(), "build the library again, or copy it again");
        return false;
    }
}

}  // namespace Tesseret::Inspect
