#include <array>
#include <mutex>
#include <new>
#include <stdexcept>
#include <vector>

#include <gmock/gmock.h>

#include "libraries/Processor/HostThreads.h"
#include "libraries/Processor/ovMultiProcessor.h"
#include "libraries/exceptions/Exceptions.h"
#include "tests/fixtures/FakeServices.h"

namespace Orvane {
namespace {

using ::testing::ElementsAre;
using Testing::FakeServices;
using Testing::FakeThreads;
using ::testing::Pair;

TEST(RowSplit, GivesEveryThreadOneShare)
{
    struct Case {
        int begin, end, index, count;
        std::pair<int, int> share;
    };
    const Case cases[] = {
        {0, 100, 0, 4, {0, 25}},       {0, 100, 3, 4, {75, 100}}, {0, 10, 0, 4, {0, 3}},
        {0, 10, 2, 4, {6, 9}},         {0, 10, 3, 4, {9, 10}},    {0, 2, 1, 4, {1, 2}},
        {0, 2, 2, 4, {2, 2}},          {0, 2, 3, 4, {3, 2}},      {-7, 3, 1, 2, {-2, 3}},
        {5, 9, -1, 4, {5, 9}},         {5, 9, 0, 0, {5, 9}},      {4, 4, 1, 3, {4, 4}},
        {0, 7, 0, 2000000000, {0, 1}},
    };
    for (const Case& c : cases) {
        int begin = c.begin, end = c.end;
        splitRange(begin, end, c.index, c.count);
        EXPECT_EQ(std::make_pair(begin, end), c.share)
            << c.begin << ".." << c.end << " thread " << c.index << " of " << c.count;
    }
}

/// Counts how often each of its rows was visited, and may fail on one of them.
class RowCounter : public MultiProcessor {
public:
    explicit RowCounter(int rows) : visits(static_cast<std::size_t>(rows)) {}
    void beginPass() override { ++begun; }
    void endPass() override { ++ended; }
    void processPass() override
    {
        int begin = 0, end = static_cast<int>(visits.size());
        threadRange(begin, end);
        for (int i = begin; i < end; ++i) {
            ++visits[static_cast<std::size_t>(i)];
            if (fail && (failingRow < 0 || i == failingRow)) fail();
        }
    }

    std::vector<std::atomic<int>> visits;
    void (*fail)() = nullptr;
    int failingRow = -1;  ///< below 0: all of them
    int begun = 0, ended = 0;
};

void expectEveryRowOnce(const RowCounter& node)
{
    for (const auto& count : node.visits) EXPECT_EQ(count, 1);
}

TEST(MultiProcessor, CoversEveryRowOnceHoweverTheHostRunsIt)
{
    for (const auto mode : {FakeThreads::Mode::Real, FakeThreads::Mode::InARow}) {
        for (const unsigned int threads : {1u, 2u, 4u, 7u, 40u}) {
            FakeServices services(threads, mode);
            RowCounter node(23);
            node.process();
            expectEveryRowOnce(node);
            EXPECT_EQ(services.threads.calls, 1);
            EXPECT_EQ(services.threads.lastAsked, threads);
        }
    }
    FakeServices fewer(8);
    fewer.threads.limit = 3;  // the host makes three calls of the eight asked for
    RowCounter node(23);
    node.process();
    expectEveryRowOnce(node);
}

TEST(MultiProcessor, RunsOnTheCallingThreadWhenSingleThreaded)
{
    FakeServices services(4);
    RowCounter node(5);
    node.setMultiThreaded(false);
    node.setNumPasses(3);
    node.process();
    EXPECT_EQ(services.threads.calls, 0);
    EXPECT_EQ(node.numThreads(), 1);
    EXPECT_EQ(node.begun, 3);
    EXPECT_EQ(node.visits[4], 3);
}

class Outer : public MultiProcessor {
public:
    void processPass() override
    {
        RowCounter inner(9);
        inner.process();
        const std::lock_guard guard(lock);
        ++runs;
        for (const auto& count : inner.visits) wrong += count != 1;
    }
    std::mutex lock;
    int runs = 0, wrong = 0;
};

TEST(MultiProcessor, DoesNotSpreadAPassReachedFromAWorker)
{
    // A host that makes its calls on the calling thread reports that it is not spawned.
    for (const auto mode : {FakeThreads::Mode::Real, FakeThreads::Mode::InARow}) {
        FakeServices services(3, mode);
        Outer outer;
        outer.process();
        EXPECT_EQ(services.threads.calls, 1);
        EXPECT_EQ(outer.runs, 3);
        EXPECT_EQ(outer.wrong, 0);
    }
}

TEST(MultiProcessor, SkipsAPassThatTheHostRefuses)
{
    FakeServices services(2, FakeThreads::Mode::Refuse);
    RowCounter node(2);
    node.process();
    EXPECT_EQ(node.visits[0], 0);
    EXPECT_EQ(node.ended, 1);
}

TEST(MultiProcessor, AbortSkipsPassesWithoutAnError)
{
    const FakeServices services;
    RenderStatus record;
    record.poll = [](void* counter, int*) { return --*static_cast<int*>(counter) < 0 ? 1 : 0; };
    int allowed = 3;  // two polls in the first pass, one before the second
    record.abortHandle = &allowed;
    RowCounter node(1);
    node.setStatusRecord(&record);
    node.setNumPasses(5);
    node.process();
    EXPECT_EQ(node.visits[0], 1);
    EXPECT_EQ(node.begun, 2);
    EXPECT_EQ(node.ended, 1);
    EXPECT_EQ(record.aborted, 1);
    EXPECT_EQ(allowed, -1);  // once known, the host is not polled again
}

[[noreturn]] void throwBadAlloc()
{
    throw std::bad_alloc();
}
[[noreturn]] void throwOutOfMemory()
{
    throw Exceptions::OutOfMemory(Exceptions::kUnknownFunction, "origin", 1);
}
[[noreturn]] void throwThreadFailed()
{
    throw Exceptions::ThreadFailed(Exceptions::kUnknownFunction, "origin", 2, "detail");
}
[[noreturn]] void throwOther()
{
    throw std::runtime_error("other");
}

struct FailureCase {
    void (*fail)();
    int errorCode;
    int storedLine;  ///< of the worker's context: where the exception was raised
    int finalLine;   ///< of the exception on the calling thread
};

class WorkerFailure : public ::testing::TestWithParam<FailureCase> {};

TEST_P(WorkerFailure, BecomesAnExceptionOnTheCallingThread)
{
    Exceptions::clearErrorContexts();
    const FakeServices services(4);
    RenderStatus record;
    RowCounter node(8);
    node.setStatusRecord(&record);
    node.fail = GetParam().fail;
    node.failingRow = 5;  // on worker 2
    try {
        node.process();
        FAIL() << "nothing was thrown";
    } catch (const Exceptions::ExceptionI& failure) {
        EXPECT_EQ(failure.context().line, GetParam().finalLine);
        EXPECT_EQ(failure.id(), GetParam().errorCode == kErrorOutOfMemory ? 5 : 4);
    }
    EXPECT_EQ(record.aborted, 1);
    EXPECT_EQ(record.errorCode, GetParam().errorCode);
    EXPECT_EQ(node.ended, 1);
    const Exceptions::ErrorStacks stacks = Exceptions::errorContexts();
    ASSERT_EQ(stacks.size(), 1u);
    EXPECT_EQ(stacks.begin()->first, 2u);
    EXPECT_EQ(stacks.begin()->second.at(0).line, GetParam().storedLine);
    for (std::size_t row : {0u, 3u, 7u}) EXPECT_EQ(node.visits[row], 1) << "others finish";

    node.setStatusRecord(nullptr);  // the failure itself is over
    node.fail = nullptr;
    EXPECT_NO_THROW(node.process());
    Exceptions::clearErrorContexts();
}

INSTANTIATE_TEST_SUITE_P(Kinds, WorkerFailure,
                         ::testing::Values(FailureCase{throwBadAlloc, 1000, 79, 123},
                                           FailureCase{throwOutOfMemory, 1000, 1, 123},
                                           FailureCase{throwThreadFailed, 1002, 2, 118},
                                           FailureCase{throwOther, 1002, 73, 118}));

TEST(MultiProcessor, AllWorkersMayFailTogether)
{
    Exceptions::clearErrorContexts();
    const FakeServices services(7);
    RenderStatus record;
    RowCounter node(7);
    node.setStatusRecord(&record);
    node.fail = throwBadAlloc;
    EXPECT_THROW(node.process(), Exceptions::OutOfMemory);
    EXPECT_EQ(Exceptions::errorContexts().size(), 7u);
    Exceptions::clearErrorContexts();
}

TEST(HostThreads, PassesAtMostSixArguments)
{
    const FakeServices services;
    static std::size_t received;
    std::array<void*, 8> arguments{};
    runOnThreads([](std::span<void* const> passed) { received = passed.size(); }, arguments);
    EXPECT_EQ(received, 6u);
    runOnThreads([](std::span<void* const> passed) { received = passed.size(); }, {});
    EXPECT_EQ(received, 0u);
}

}  // namespace
}  // namespace Orvane
