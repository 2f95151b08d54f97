#include <algorithm>
#include <thread>

#include "platform/Processors.h"

namespace Orvane {

std::optional<unsigned int> processorQuota(const std::filesystem::path& /*root*/)
{
    return std::nullopt;
}

std::optional<unsigned int> slurmProcessors(const char* /*jobId*/, const char* /*perTask*/)
{
    return std::nullopt;
}

unsigned int availableProcessors()
{
    return std::max(std::thread::hardware_concurrency(), 1u);
}

}  // namespace Orvane
