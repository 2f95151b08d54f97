#pragma once

/// How many processors this process may use, which is less than the machine has where it shares the
/// machine with others.

#include <filesystem>
#include <optional>

namespace Orvane {

/// The processors of this process, at least one: those of its affinity, which a set of processors
/// limits too, no more than the quota of its control groups, and in a Slurm job no more than
/// SLURM_CPUS_PER_TASK. Asks the system each time.
unsigned int availableProcessors();

/// The quota of this process's control groups, of version 1 and 2, in whole processors, rounded up;
/// the least of those that contain each other. nullopt where there is none. `root` has the folders
/// "proc" and "sys".
std::optional<unsigned int> processorQuota(const std::filesystem::path& root);

/// SLURM_CPUS_PER_TASK of these two variables' texts, which may be null; nullopt outside a job.
std::optional<unsigned int> slurmProcessors(const char* jobId, const char* processorsPerTask);

}  // namespace Orvane
