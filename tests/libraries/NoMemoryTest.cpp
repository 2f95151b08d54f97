#include <atomic>
#include <cstdlib>
#include <new>

#include <gtest/gtest.h>

#include "libraries/Processor/ovMultiProcessor.h"
#include "libraries/exceptions/Exceptions.h"
#include "tests/fixtures/FakeServices.h"

namespace {

std::atomic<unsigned int> shortage{1};
thread_local unsigned int ownShortage = 0;

}  // namespace

// This program's own allocation: a thread can be left without any.

[[gnu::noinline]] void* operator new(std::size_t size)
{
    void* block = ownShortage == shortage ? nullptr : std::malloc(size > 0 ? size : 1);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

[[gnu::noinline]] void operator delete(void* block) noexcept
{
    std::free(block);
}

[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}

namespace Orvane {
namespace {

using Testing::FakeServices;
using Testing::FakeThreads;

/// Has no memory from the moment a worker starts to the end of the pass.
class Starved final : public MultiProcessor {
public:
    void processPass() override
    {
        ownShortage = shortage;
        ::operator delete(::operator new(64));
    }
    void endPass() override { ++shortage; }
};

TEST(NoMemory, IsRecordedByEveryWorkerWithoutAny)
{
    for (const auto mode : {FakeThreads::Mode::Real, FakeThreads::Mode::InARow}) {
        for (const unsigned int threads : {1u, 2u, 7u}) {
            Exceptions::clearErrorContexts();
            const FakeServices services(threads, mode);
            RenderStatus record;
            Starved node;
            node.setStatusRecord(&record);
            EXPECT_THROW(node.process(), Exceptions::OutOfMemory);
            EXPECT_EQ(record.errorCode, kErrorOutOfMemory);
            std::size_t contexts = 0;
            for (const auto& [thread, stack] : Exceptions::errorContexts()) {
                contexts += stack.size();
            }
            EXPECT_EQ(contexts, threads);
        }
    }
    Exceptions::clearErrorContexts();
}

}  // namespace
}  // namespace Orvane
