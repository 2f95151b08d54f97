#include "files/PartNames.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace Tesseret::Files {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kMark = ".part-";

const std::string& machine()
{
    static const std::string name = [] {
        std::array<char, 256> text{};
        ::gethostname(text.data(), text.size() - 1);
        return std::string(text.data());
    }();
    return name;
}

/// ".plate.0001.part-node7-", before the numbers of the process and of the file.
std::string beginningOf(const fs::path& target)
{
    constexpr std::size_t kMostName = 255, kNumbers = 24;
    const std::string end = std::string(kMark).append(machine()).append("-");
    const std::size_t others = 1 + end.size() + kNumbers + target.extension().string().size();
    std::string stem = target.stem().string();
    if (others < kMostName) stem.resize(std::min(stem.size(), kMostName - others));
    return "." + stem + end;
}

/// The process that a file was written by; 0 where the name has no such number.
pid_t processOf(const std::string& name, const std::string& beginning)
{
    pid_t process = 0;
    const char* const begin = name.data() + beginning.size();
    const auto [end, error] = std::from_chars(begin, name.data() + name.size(), process);
    const bool isNumber = error == std::errc() && end != name.data() + name.size() && *end == '-';
    return isNumber && process > 0 ? process : 0;
}

/// Processes in other containers of this machine are not seen, but their locks are.
bool isLeft(const fs::path& file, pid_t process)
{
    if (process == 0 || ::kill(process, 0) == 0 || errno != ESRCH) return false;
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor < 0) return false;
    const bool isFree = ::flock(descriptor, LOCK_EX | LOCK_NB) == 0;
    ::close(descriptor);
    return isFree;
}

/// The names of all files in a folder that a process of this machine was writing when this one
/// first asked.
const std::vector<std::string>& partsIn(const fs::path& folder)
{
    static std::map<fs::path, std::vector<std::string>> found;
    const auto [entry, isNew] = found.try_emplace(folder);
    if (!isNew) return entry->second;
    const std::string mark = std::string(kMark).append(machine()).append("-");
    std::error_code error;
    for (fs::directory_iterator file(folder, error), end; !error && file != end;
         file.increment(error)) {
        std::string name = file->path().filename().string();
        if (name.starts_with('.') && name.find(mark) != std::string::npos) {
            entry->second.push_back(std::move(name));
        }
    }
    return entry->second;
}

}  // namespace

fs::path folderOf(const fs::path& file)
{
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

fs::path partNameOf(const fs::path& target)
{
    static std::atomic<unsigned> count{0};
    return folderOf(target) / (beginningOf(target) + std::to_string(::getpid()) + "-" +
                               std::to_string(count++) + target.extension().string());
}

void removeLeftovers(const fs::path& target)
{
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    const std::string beginning = beginningOf(target);
    const std::string extension = target.extension().string();
    for (const std::string& name : partsIn(folderOf(target))) {
        if (!name.starts_with(beginning) || !name.ends_with(extension)) continue;
        const fs::path file = folderOf(target) / name;
        std::error_code ignored;
        if (isLeft(file, processOf(name, beginning))) fs::remove(file, ignored);
    }
}

}  // namespace Tesseret::Files
