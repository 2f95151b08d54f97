#include "viewer/model/PathCompletion.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace Tesseret::Viewer {

namespace fs = std::filesystem;

namespace {

std::size_t nameStart(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? 0 : slash + 1;
}

/// Without a path that is cut inside a letter of several bytes.
std::string commonStart(const std::vector<std::string>& names)
{
    std::string common = names.front();
    for (const std::string& name : names) {
        const auto [a, b] = std::ranges::mismatch(common, name);
        common.erase(a, common.end());
    }
    while (!common.empty() && common != names.front() &&
           (static_cast<unsigned char>(names.front()[common.size()]) & 0xc0) == 0x80) {
        common.pop_back();
    }
    return common;
}

std::vector<std::string> candidates(const fs::path& folder, const std::string& start)
{
    std::vector<std::string> names;
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::string name = entry->path().filename().string();
        if (!name.starts_with(start) || (start.empty() && name.starts_with('.'))) continue;
        std::error_code unknown;
        if (entry->is_directory(unknown)) name += '/';
        names.push_back(std::move(name));
    }
    std::ranges::sort(names);
    return names;
}

}  // namespace

std::string expandHome(const std::string& typed)
{
    const char* const home = std::getenv("HOME");
    if (home == nullptr || !typed.starts_with("~/")) return typed;
    return std::string(home) + typed.substr(1);
}

std::string withName(const std::string& typed, const std::string& name)
{
    return typed.substr(0, nameStart(typed)) + name;
}

PathCompletion completePath(const std::string& typed)
{
    const std::string path = expandHome(typed);
    const std::size_t start = nameStart(path);
    const fs::path folder = start == 0 ? fs::path(".") : fs::path(path.substr(0, start));
    PathCompletion completion{typed, candidates(folder, path.substr(start))};
    if (!completion.names.empty()) {
        completion.text = withName(typed, commonStart(completion.names));
    }
    return completion;
}

}  // namespace Tesseret::Viewer
