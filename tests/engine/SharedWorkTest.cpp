/// Tasks shared between threads, on hosts of all kinds.

#include <atomic>
#include <vector>

#include <gtest/gtest.h>

#include "engine/pass/SharedWork.h"
#include "libraries/services/HostServices.h"
#include "tests/fixtures/FakeServices.h"

namespace Orvane::Engine {
namespace {

using Testing::FakeServices;

/// Reports some number of processors and makes another number of calls, one after another.
class OddThreads final : public ThreadService {
public:
    OddThreads(unsigned int reported, unsigned int made) : reported_(reported), made_(made)
    {
        setThreadService(this);
    }
    ~OddThreads() override { setThreadService(nullptr); }

    unsigned int numCPUs() override { return reported_; }
    unsigned int threadIndex() override { return 0; }
    bool isSpawnedThread() override { return false; }
    void run(HostThreadFunction* function, unsigned int, void* argument) override
    {
        for (unsigned int i = 0; i < made_; ++i) function(i, made_, argument);
    }

private:
    unsigned int reported_, made_;
};

std::vector<int> runsOfEach(int tasks)
{
    std::vector<std::atomic<int>> runs(static_cast<std::size_t>(tasks));
    SharedWork work(nullptr);
    EXPECT_TRUE(work.run(tasks, [&](int task, int worker) {
        EXPECT_GE(worker, 0);
        EXPECT_LT(worker, work.workers());
        ++runs[static_cast<std::size_t>(task)];
    }));
    return {runs.begin(), runs.end()};
}

TEST(SharedWork, RunsEveryTaskOnceWhateverCallsTheHostMakes)
{
    const std::vector<int> once(40, 1);
    for (const unsigned int reported : {1u, 2u, 7u, 4000000000u}) {
        for (const unsigned int made : {0u, 1u, 3u, 900u}) {
            const OddThreads threads(reported, made);
            EXPECT_EQ(runsOfEach(40), once) << reported << " reported, " << made << " calls";
        }
    }
    const FakeServices services(5);
    EXPECT_EQ(runsOfEach(40), once);
    EXPECT_EQ(services.threads.calls, 1);
    EXPECT_EQ(runsOfEach(1), std::vector<int>(1, 1));
    EXPECT_EQ(services.threads.calls, 1) << "a single task needs no call";
}

TEST(SharedWork, LeavesTasksOutAfterAnAbort)
{
    const FakeServices services(3);
    RenderStatus status;
    int polls = 0;
    status.abortHandle = &polls;
    status.poll = [](void* count, int*) { return ++*static_cast<int*>(count) > 4 ? 1 : 0; };
    SharedWork work(&status);
    std::atomic<int> run = 0;
    EXPECT_FALSE(work.run(100000, [&run](int, int) { ++run; }));
    EXPECT_LT(run, 100000);
    EXPECT_EQ(status.aborted, 1);
}

}  // namespace
}  // namespace Orvane::Engine
