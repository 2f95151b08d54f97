#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <sched.h>

#include "platform/Processors.h"

namespace Orvane {

namespace fs = std::filesystem;

namespace {

std::optional<long long> numberFrom(std::string_view text)
{
    long long number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

std::optional<long long> numberIn(const fs::path& file)
{
    std::ifstream stream(file);
    std::string word;
    if (!(stream >> word)) return std::nullopt;
    return numberFrom(word);
}

std::optional<unsigned int> processors(std::optional<long long> quota,
                                       std::optional<long long> period)
{
    if (!quota || !period || *quota <= 0 || *period <= 0) return std::nullopt;  // no limit
    return static_cast<unsigned int>(std::min((*quota - 1) / *period + 1, 1LL << 20));
}

/// "200000 100000" or "max 100000".
std::optional<unsigned int> quotaOfVersion2(const fs::path& group)
{
    std::ifstream stream(group / "cpu.max");
    std::string quota, period;
    if (!(stream >> quota >> period)) return std::nullopt;
    return processors(numberFrom(quota), numberFrom(period));
}

std::optional<unsigned int> quotaOfVersion1(const fs::path& group)
{
    return processors(numberIn(group / "cpu.cfs_quota_us"), numberIn(group / "cpu.cfs_period_us"));
}

using QuotaOf = std::optional<unsigned int> (*)(const fs::path& group);

/// The least quota of a group and those that contain it. In a container the group's path may be
/// that outside it, of which the file system shows nothing but the container's own group.
std::optional<unsigned int> leastQuota(const fs::path& mount, const std::string& path,
                                       QuotaOf quotaOf)
{
    std::optional<unsigned int> least;
    fs::path group = fs::path(path).relative_path();
    for (;;) {
        if (const auto quota = quotaOf(mount / group))
            least = std::min(least.value_or(*quota), *quota);
        if (group.empty()) return least;
        group = group.parent_path();
    }
}

bool hasItem(const std::string& list, std::string_view wanted)
{
    std::istringstream items(list);
    for (std::string item; std::getline(items, item, ',');) {
        if (item == wanted) return true;
    }
    return false;
}

/// The processors that the scheduler may put this process on.
unsigned int affinity()
{
    for (std::size_t most = 1024; most <= 1 << 20; most *= 2) {
        std::vector<cpu_set_t> sets(most / CPU_SETSIZE);
        const std::size_t bytes = sets.size() * sizeof(cpu_set_t);
        if (::sched_getaffinity(0, bytes, sets.data()) != 0) continue;
        return static_cast<unsigned int>(CPU_COUNT_S(bytes, sets.data()));
    }
    return std::thread::hardware_concurrency();
}

}  // namespace

std::optional<unsigned int> processorQuota(const fs::path& root)
{
    std::optional<unsigned int> least;
    const fs::path mounts = root / "sys" / "fs" / "cgroup";
    const auto consider = [&](const fs::path& mount, const std::string& path, QuotaOf quotaOf) {
        const auto quota = leastQuota(mount, path, quotaOf);
        if (quota) least = std::min(least.value_or(*quota), *quota);
    };
    // Lines "hierarchy:controllers:path"; of version 2 "0::path".
    std::ifstream groups(root / "proc" / "self" / "cgroup");
    for (std::string line; std::getline(groups, line);) {
        const std::size_t first = line.find(':');
        const std::size_t second = line.find(':', first + 1);
        if (first == std::string::npos || second == std::string::npos) continue;
        const std::string controllers = line.substr(first + 1, second - first - 1);
        const std::string path = line.substr(second + 1);
        if (controllers.empty()) {
            consider(mounts, path, &quotaOfVersion2);
            consider(mounts / "unified", path, &quotaOfVersion2);
        } else if (hasItem(controllers, "cpu")) {
            // Mounted by the names of its controllers in either order, with a link by the name.
            for (const char* const name : {"cpu", "cpu,cpuacct", "cpuacct,cpu"}) {
                consider(mounts / name, path, &quotaOfVersion1);
            }
        }
    }
    return least;
}

std::optional<unsigned int> slurmProcessors(const char* jobId, const char* processorsPerTask)
{
    if (jobId == nullptr || *jobId == '\0' || processorsPerTask == nullptr) return std::nullopt;
    const std::optional<long long> count = numberFrom(processorsPerTask);
    if (!count || *count < 1 || *count > 1 << 20) return std::nullopt;
    return static_cast<unsigned int>(*count);
}

unsigned int availableProcessors()
{
    unsigned int count = affinity();
    if (const auto quota = processorQuota("/")) count = std::min(count, *quota);
    const auto given =
        slurmProcessors(std::getenv("SLURM_JOB_ID"), std::getenv("SLURM_CPUS_PER_TASK"));
    if (given) count = std::min(count, *given);
    return std::max(count, 1u);
}

}  // namespace Orvane
