#include <array>
#include <atomic>
#include <set>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/EmbeddedHost.h"
#include "host/Suites.h"
#include "tests/fixtures/QuirkyHost.h"

namespace Tesseret::Host {
namespace {

const OfxMultiThreadSuiteV1& suite = multiThreadSuite();

/// Observations of the calls of one pass.
struct Pass {
    std::array<std::atomic<int>, 64> calls{};
    std::atomic<unsigned int> count{0};
    std::atomic<int> wrongIndex{0};
    std::atomic<int> notSpawned{0};
    std::atomic<int> nestedStatus{-1};
};

void visit(unsigned int index, unsigned int count, void* argument)
{
    Pass& pass = *static_cast<Pass*>(argument);
    pass.calls.at(index).fetch_add(1);
    pass.count.store(count);
    unsigned int ownIndex = 999;
    const bool isKnown = suite.multiThreadIndex(&ownIndex) == kOfxStatOK;
    if (!isKnown || ownIndex != index) pass.wrongIndex.fetch_add(1);
    if (suite.multiThreadIsSpawnedThread() == 0) pass.notSpawned.fetch_add(1);
}

void nest(unsigned int index, unsigned int count, void* argument)
{
    visit(index, count, argument);
    Pass inner;
    static_cast<Pass*>(argument)->nestedStatus.store(suite.multiThread(&visit, 2, &inner));
}

void expectEachOnce(const Pass& pass, unsigned int count)
{
    EXPECT_EQ(pass.count, count);
    for (unsigned int i = 0; i < pass.calls.size(); ++i) {
        EXPECT_EQ(pass.calls.at(i), i < count ? 1 : 0) << "index " << i;
    }
}

TEST(ThreadsTest, CallsEveryIndexOnceForEveryPass)
{
    for (const unsigned int threads : {1u, 2u, 4u, 7u}) {
        EmbeddedHost host({.threads = threads});
        const EmbeddedHost::Scope scope(host);
        unsigned int count = 0;
        EXPECT_EQ(suite.multiThreadNumCPUs(&count), kOfxStatOK);
        EXPECT_EQ(count, threads);
        for (int repeat = 0; repeat < 500; ++repeat) {
            Pass pass;
            ASSERT_EQ(suite.multiThread(&visit, 7, &pass), kOfxStatOK);
            expectEachOnce(pass, threads);  // 7 requested, limited by the host's number
            ASSERT_EQ(pass.wrongIndex, 0);
            ASSERT_EQ(pass.notSpawned, 0);
        }
        EXPECT_EQ(suite.multiThreadIsSpawnedThread(), 0);
        Pass pass;
        EXPECT_EQ(suite.multiThread(&visit, 1, &pass), kOfxStatOK);  // fewer than there are
        expectEachOnce(pass, 1);
    }
}

TEST(ThreadsTest, RefusesNestedAndImpossibleCalls)
{
    EmbeddedHost host({.threads = 3});
    const EmbeddedHost::Scope scope(host);
    Pass pass;
    EXPECT_EQ(suite.multiThread(&nest, 3, &pass), kOfxStatOK);
    EXPECT_EQ(pass.nestedStatus, kOfxStatErrExists);
    EXPECT_EQ(suite.multiThread(nullptr, 3, &pass), kOfxStatErrValue);
    EXPECT_EQ(suite.multiThread(&visit, 0, &pass), kOfxStatErrValue);
    EXPECT_EQ(suite.multiThreadNumCPUs(nullptr), kOfxStatErrValue);
    EXPECT_EQ(suite.multiThread([](unsigned int, unsigned int, void*) { throw 1; }, 3, nullptr),
              kOfxStatFailed);
    expectEachOnce(pass, 3);
}

TEST(ThreadsTest, ServesCallersOnSeveralThreadsAtOnce)
{
    EmbeddedHost host({.threads = 3});
    std::array<std::thread, 3> callers;
    std::atomic<int> wrong{0};
    for (std::thread& caller : callers) {
        caller = std::thread([&] {
            const EmbeddedHost::Scope scope(host);
            for (int repeat = 0; repeat < 300; ++repeat) {
                Pass pass;
                if (suite.multiThread(&visit, 3, &pass) != kOfxStatOK) wrong.fetch_add(1);
                for (unsigned int i = 0; i < 3; ++i) wrong.fetch_add(pass.calls.at(i) != 1);
                wrong.fetch_add(pass.wrongIndex + pass.notSpawned);
            }
        });
    }
    for (std::thread& caller : callers) caller.join();
    EXPECT_EQ(wrong, 0);
}

/// Records the thread of each call.
struct ThreadNames {
    std::mutex mutex;
    std::set<std::thread::id> names;
};

TEST(ThreadsTest, KeepsItsThreadsFromPassToPass)
{
    EmbeddedHost host({.threads = 4});
    const EmbeddedHost::Scope scope(host);
    ThreadNames seen;
    for (int repeat = 0; repeat < 200; ++repeat) {
        suite.multiThread(
            [](unsigned int, unsigned int, void* argument) {
                auto& all = *static_cast<ThreadNames*>(argument);
                const std::lock_guard lock(all.mutex);
                all.names.insert(std::this_thread::get_id());
            },
            4, &seen);
    }
    EXPECT_LE(seen.names.size(), 4u);
    EXPECT_TRUE(seen.names.contains(std::this_thread::get_id()));
}

TEST(ThreadsTest, ImitatesHostsWithoutRealThreads)
{
    Fixtures::QuirkyHost quirky;
    EmbeddedHost host(quirky.options(4));
    const EmbeddedHost::Scope scope(host);
    unsigned int count = 0;
    quirky.quirks.threading = Fixtures::Threading::DirectCall;
    Pass direct;
    EXPECT_EQ(suite.multiThread(&visit, 4, &direct), kOfxStatOK);
    expectEachOnce(direct, 1);
    EXPECT_EQ(direct.notSpawned, 1);
    suite.multiThreadNumCPUs(&count);
    EXPECT_EQ(count, 1u);

    quirky.quirks.threading = Fixtures::Threading::InARow;
    Pass row;
    EXPECT_EQ(suite.multiThread(&visit, 4, &row), kOfxStatOK);
    expectEachOnce(row, 4);
    EXPECT_EQ(row.wrongIndex, 3);  // the index function stays at 0

    quirky.quirks.threading = Fixtures::Threading::Pool;
    quirky.quirks.fewerThreads = 2;
    Pass fewer;
    EXPECT_EQ(suite.multiThread(&visit, 4, &fewer), kOfxStatOK);
    expectEachOnce(fewer, 2);

    quirky.quirks.multiThreadStatus = kOfxStatFailed;
    Pass none;
    EXPECT_EQ(suite.multiThread(&visit, 4, &none), kOfxStatFailed);
    expectEachOnce(none, 0);
    quirky.quirks.cpuCountChanges = true;
    std::set<unsigned int> counts;
    for (int i = 0; i < 4; ++i) {
        suite.multiThreadNumCPUs(&count);
        counts.insert(count);
    }
    EXPECT_THAT(counts, ::testing::ElementsAre(1, 2, 3, 4));
}

TEST(MutexTest, NestsForItsOwnerAndHoldsOthersOff)
{
    EmbeddedHost host;
    OfxMutexHandle mutex = nullptr;
    ASSERT_EQ(suite.mutexCreate(&mutex, 1), kOfxStatOK);
    EXPECT_EQ(suite.mutexTryLock(mutex), kOfxStatOK);
    std::thread([&] {
        EXPECT_EQ(suite.mutexTryLock(mutex), kOfxStatFailed);
        EXPECT_EQ(suite.mutexUnLock(mutex), kOfxStatFailed);
    }).join();
    EXPECT_EQ(suite.mutexUnLock(mutex), kOfxStatOK);
    EXPECT_EQ(suite.mutexUnLock(mutex), kOfxStatOK);
    EXPECT_EQ(suite.mutexUnLock(mutex), kOfxStatFailed);

    int shared = 0;
    const auto add = [&] {
        for (int i = 0; i < 1000; ++i) {
            suite.mutexLock(mutex);
            ++shared;
            suite.mutexUnLock(mutex);
        }
    };
    std::thread other(add);
    add();
    other.join();
    EXPECT_EQ(shared, 2000);
    EXPECT_EQ(suite.mutexDestroy(mutex), kOfxStatOK);
    EXPECT_EQ(suite.mutexLock(mutex), kOfxStatErrBadHandle);
    EXPECT_EQ(suite.mutexDestroy(nullptr), kOfxStatErrBadHandle);
}

}  // namespace
}  // namespace Tesseret::Host
