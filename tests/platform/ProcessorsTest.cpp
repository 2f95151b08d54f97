#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <sched.h>

#include "platform/Processors.h"
#include "tests/fixtures/TemporaryFolder.h"

namespace Orvane {
namespace {

namespace fs = std::filesystem;

class ProcessorsTest : public testing::Test {
protected:
    void put(const std::string& file, const std::string& text) const
    {
        const fs::path path = folder_ / file;
        fs::create_directories(path.parent_path());
        std::ofstream(path) << text << '\n';
    }
    std::optional<unsigned int> quota() const { return processorQuota(folder_.path()); }

    Tesseret::Fixtures::TemporaryFolder folder_;
};

TEST_F(ProcessorsTest, QuotasOfVersion2AreThoseOfAllGroupsAround)
{
    EXPECT_EQ(quota(), std::nullopt) << "no control groups";
    put("proc/self/cgroup", "0::/slurm/job_7/step_0");
    put("sys/fs/cgroup/slurm/job_7/step_0/cpu.max", "max 100000");
    EXPECT_EQ(quota(), std::nullopt);
    put("sys/fs/cgroup/slurm/job_7/cpu.max", "250000 100000");
    EXPECT_EQ(quota(), 3u) << "rounded up";
    put("sys/fs/cgroup/slurm/cpu.max", "800000 100000");
    EXPECT_EQ(quota(), 3u);
    put("sys/fs/cgroup/slurm/job_7/step_0/cpu.max", "50000 100000");
    EXPECT_EQ(quota(), 1u);
    put("sys/fs/cgroup/slurm/job_7/step_0/cpu.max", "nonsense");
    EXPECT_EQ(quota(), 3u);
}

// In a container the path is that of the host, and only the container's own group is mounted.
TEST_F(ProcessorsTest, TheMountItselfCounts)
{
    put("proc/self/cgroup", "0::/docker/0123");
    put("sys/fs/cgroup/cpu.max", "200000 100000");
    EXPECT_EQ(quota(), 2u);
    put("proc/self/cgroup", "0::/../../outside");
    EXPECT_EQ(quota(), 2u);
}

TEST_F(ProcessorsTest, QuotasOfVersion1)
{
    put("proc/self/cgroup", "12:cpuset:/\n4:cpu,cpuacct:/box/inner\n1:name=systemd:/x\n0::/x");
    put("sys/fs/cgroup/cpu,cpuacct/box/inner/cpu.cfs_quota_us", "-1");
    put("sys/fs/cgroup/cpu,cpuacct/box/inner/cpu.cfs_period_us", "100000");
    EXPECT_EQ(quota(), std::nullopt) << "-1 is no limit";
    put("sys/fs/cgroup/cpu,cpuacct/box/cpu.cfs_quota_us", "400000");
    put("sys/fs/cgroup/cpu,cpuacct/box/cpu.cfs_period_us", "100000");
    EXPECT_EQ(quota(), 4u);
    put("sys/fs/cgroup/unified/x/cpu.max", "150000 100000");
    EXPECT_EQ(quota(), 2u) << "both versions at once";
}

TEST_F(ProcessorsTest, SlurmsCountIsThatOfAJob)
{
    EXPECT_EQ(slurmProcessors("17", "6"), 6u);
    for (const char* const bad : {"", "0", "-2", "4x", "99999999999999999999"}) {
        EXPECT_EQ(slurmProcessors("17", bad), std::nullopt) << bad;
    }
    EXPECT_EQ(slurmProcessors("17", nullptr), std::nullopt);
    EXPECT_EQ(slurmProcessors(nullptr, "6"), std::nullopt) << "left over in a shell";
    EXPECT_EQ(slurmProcessors("", "6"), std::nullopt);
}

TEST_F(ProcessorsTest, TheAffinityIsAtLeastOneAndLimitsTheRest)
{
    cpu_set_t before;
    ASSERT_EQ(::sched_getaffinity(0, sizeof before, &before), 0);
    const unsigned int all = availableProcessors();
    EXPECT_GE(all, 1u);
    EXPECT_LE(all, static_cast<unsigned int>(CPU_COUNT(&before)));
    int first = 0;
    while (!CPU_ISSET(first, &before)) ++first;
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(first, &one);
    ASSERT_EQ(::sched_setaffinity(0, sizeof one, &one), 0);
    EXPECT_EQ(availableProcessors(), 1u);
    ASSERT_EQ(::sched_setaffinity(0, sizeof before, &before), 0);
}

}  // namespace
}  // namespace Orvane
