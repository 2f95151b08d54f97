#include <cstring>

#include <gtest/gtest.h>

#include "host/Descriptor.h"
#include "host/EmbeddedHost.h"
#include "host/Suites.h"
#include "tests/fixtures/QuirkyHost.h"

namespace Tesseret::Host {
namespace {

class MemoryTest : public ::testing::Test {
protected:
    OfxStatus allocate(std::size_t bytes)
    {
        return suite.imageMemoryAlloc(effect.handle(), bytes, &memory);
    }

    Fixtures::QuirkyHost quirky;
    EmbeddedHost host{quirky.options()};
    Descriptor effect{host};
    const OfxImageEffectSuiteV1& suite = imageEffectSuite();
    OfxImageMemoryHandle memory = nullptr;
    void* data = nullptr;
};

TEST_F(MemoryTest, CountsBlocksBytesAndLocks)
{
    ASSERT_EQ(allocate(1000), kOfxStatOK);
    ASSERT_EQ(suite.imageMemoryLock(memory, &data), kOfxStatOK);
    ASSERT_EQ(suite.imageMemoryLock(memory, &data), kOfxStatOK);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(data) % 16, 0u);
    std::memset(data, 1, 1000);
    OfxImageMemoryHandle second = nullptr;
    ASSERT_EQ(suite.imageMemoryAlloc(nullptr, 500, &second), kOfxStatOK);
    EXPECT_EQ(suite.imageMemoryFree(second), kOfxStatOK);
    EXPECT_EQ(suite.imageMemoryUnlock(memory), kOfxStatOK);
    EXPECT_EQ(suite.imageMemoryUnlock(memory), kOfxStatOK);
    EXPECT_EQ(suite.imageMemoryUnlock(memory), kOfxStatErrValue);  // one too many

    const Fixtures::Counters counters = quirky.calls.counters();
    EXPECT_EQ(counters.bytesLive, 1000u);
    EXPECT_EQ(counters.bytesPeak, 1500u);
    EXPECT_EQ(counters.blocksLive, 1u);
    EXPECT_EQ(counters.locks, 2u);
    EXPECT_EQ(suite.imageMemoryFree(memory), kOfxStatOK);
    EXPECT_EQ(suite.imageMemoryFree(memory), kOfxStatErrBadHandle);
    EXPECT_EQ(suite.imageMemoryLock(memory, &data), kOfxStatErrBadHandle);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(quirky.calls.counters().bytesLive, 0u);
    EXPECT_EQ(quirky.calls.counters().badCalls, 3u);
}

TEST_F(MemoryTest, FailsTheChosenCalls)
{
    quirky.quirks.failAllocation = 2;
    EXPECT_EQ(allocate(10), kOfxStatOK);
    const OfxImageMemoryHandle first = memory;
    EXPECT_EQ(allocate(10), kOfxStatErrMemory);
    EXPECT_EQ(memory, nullptr);
    EXPECT_EQ(allocate(10), kOfxStatOK);
    const OfxImageMemoryHandle third = memory;

    quirky.quirks.failLock = 1;
    EXPECT_EQ(suite.imageMemoryLock(first, &data), kOfxStatErrMemory);
    EXPECT_EQ(suite.imageMemoryLock(first, &data), kOfxStatOK);
    quirky.calls.reset();
    EXPECT_EQ(suite.imageMemoryLock(third, &data), kOfxStatErrMemory);  // the count began again

    quirky.quirks.memoryLimit = 30;
    quirky.quirks.failAllocation = 0;
    EXPECT_EQ(allocate(11), kOfxStatErrMemory);
    EXPECT_EQ(allocate(10), kOfxStatOK);
    EXPECT_EQ(suite.imageMemoryFree(memory), kOfxStatOK);
    EXPECT_EQ(suite.imageMemoryFree(first), kOfxStatOK);
    EXPECT_EQ(suite.imageMemoryFree(third), kOfxStatOK);
    EXPECT_EQ(quirky.calls.counters().bytesLive, 0u);
}

TEST_F(MemoryTest, MovesUnlockedBlocksAndRefusesNullEffects)
{
    quirky.quirks.memoryMoves = true;
    quirky.quirks.memoryRefusesNullEffect = true;
    EXPECT_EQ(suite.imageMemoryAlloc(nullptr, 10, &memory), kOfxStatErrBadHandle);
    EXPECT_EQ(suite.imageMemoryAlloc(effect.handle(), 10, nullptr), kOfxStatErrValue);
    ASSERT_EQ(allocate(4), kOfxStatOK);
    suite.imageMemoryLock(memory, &data);
    std::memcpy(data, "abc", 4);
    const void* const before = data;
    suite.imageMemoryUnlock(memory);
    suite.imageMemoryLock(memory, &data);
    EXPECT_NE(data, before);
    EXPECT_STREQ(static_cast<const char*>(data), "abc");
    EXPECT_EQ(suite.imageMemoryFree(memory), kOfxStatOK);
}

TEST_F(MemoryTest, FreesGeneralMemoryOnce)
{
    const OfxMemorySuiteV1& general = memorySuite();
    ASSERT_EQ(general.memoryAlloc(effect.handle(), 100, &data), kOfxStatOK);
    EXPECT_EQ(quirky.calls.counters().memoryBlocksLive, 1u);
    int foreign = 0;
    EXPECT_EQ(general.memoryFree(&foreign), kOfxStatErrBadHandle);
    EXPECT_EQ(general.memoryFree(data), kOfxStatOK);
    EXPECT_EQ(general.memoryFree(data), kOfxStatErrBadHandle);
    EXPECT_EQ(general.memoryAlloc(&foreign, 100, &data), kOfxStatErrBadHandle);
    EXPECT_EQ(quirky.calls.counters().memoryBlocksLive, 0u);
}

}  // namespace
}  // namespace Tesseret::Host
