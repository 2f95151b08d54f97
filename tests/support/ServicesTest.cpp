#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "libraries/services/HostServices.h"
#include "products/OFX/Support/ovOfxObserver.h"
#include "tests/support/TinyEffect.h"

namespace Tesseret::Fixtures {
namespace {

using ::testing::ElementsAre;

/// Runs something inside the render action of an instance.
void insideRender(TinyHost& tiny, const std::function<void(Orvane::OvOfxHostWrapper&)>& work)
{
    const auto instance = tiny.create();
    tinyBehaviour().onRender = work;
    tiny.host().resetCounters();
    EXPECT_EQ(instance->renderOnly({.window = {0, 0, 8, 4}}, nullptr), kOfxStatOK);
    tinyBehaviour().onRender = nullptr;
}

TEST(ImageMemory, IsAskedForWithTheRunningEffectWhereNobodyIsRefused)
{
    Host::HostQuirks quirks;
    quirks.memoryRefusesNullEffect = true;
    TinyHost tiny(quirks);
    insideRender(tiny, [&](const Orvane::OvOfxHostWrapper&) {
        Orvane::ImageMemoryService& memory = Orvane::imageMemoryService();
        void* block = memory.allocate(1000);
        ASSERT_NE(block, nullptr);
        void* data = memory.lock(block);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(data) % 16, 0u);
        EXPECT_TRUE(memory.unlock(block));
        memory.free(block);
    });
    EXPECT_EQ(Orvane::imageMemoryService().allocate(1000), nullptr) << "outside any action";
    EXPECT_EQ(tiny.host().counters().blocksLive, 0u);
}

TEST(ImageMemory, ThatRanDryIsNotAskedForTwice)
{
    TinyHost tiny;
    insideRender(tiny, [&](const Orvane::OvOfxHostWrapper&) {
        tiny.host().quirks().failAllocation = 1;
        EXPECT_EQ(Orvane::imageMemoryService().allocate(1000), nullptr);
        EXPECT_EQ(tiny.host().counters().allocations, 1u);
    });
}

TEST(Threads, RunOnBehalfOfTheEffectThatSpreadItsWork)
{
    Host::HostQuirks quirks;
    quirks.memoryRefusesNullEffect = true;
    TinyHost tiny(quirks);
    insideRender(tiny, [&](const Orvane::OvOfxHostWrapper&) {
        Orvane::ThreadService& threads = Orvane::threadService();
        EXPECT_EQ(threads.numCPUs(), 2u);
        EXPECT_FALSE(threads.isSpawnedThread());
        // Often enough that a thread of the host takes its part even where the calling one is fast.
        constexpr int kRuns = 500;
        std::array<std::atomic<int>, 2> served{};
        for (int run = 0; run < kRuns; ++run) {
            threads.run(
                [](unsigned int index, unsigned int, void* argument) {
                    auto& counts = *static_cast<std::array<std::atomic<int>, 2>*>(argument);
                    void* block = Orvane::imageMemoryService().allocate(16);
                    const bool isSpawned = Orvane::threadService().isSpawnedThread();
                    const bool isIndex = Orvane::threadService().threadIndex() == index;
                    if (block != nullptr && isSpawned && isIndex) ++counts[index];
                    Orvane::imageMemoryService().free(block);
                },
                2, &served);
        }
        EXPECT_EQ(served[0], kRuns);
        EXPECT_EQ(served[1], kRuns);
    });
}

class Diary final : public Host::RenderListener {
public:
    void stageBegan(Host::Instance&, std::string_view stage) override { add("began", stage); }
    void stageEnded(Host::Instance&, std::string_view stage) override { add("ended", stage); }
    void blockLaid(Host::Instance&, const TesseretBlockV1& block) override
    {
        blocks.push_back({block.x, block.y, block.width, block.height, block.srcX, block.srcY,
                          block.textureIndex});
    }
    void note(Host::Instance&, std::string_view text) override { add("note", text); }

    std::vector<std::string> lines;
    std::vector<std::vector<int>> blocks;

private:
    void add(const char* what, std::string_view text)
    {
        lines.push_back(std::string(what) + " " + std::string(text));
    }
};

TEST(Observer, TellsAHostThatListensAndIsNoneOtherwise)
{
    TinyHost tiny;
    Diary diary;
    tiny.host().setListener(&diary);
    insideRender(tiny, [](const Orvane::OvOfxHostWrapper& wrapper) {
        const auto observer = Orvane::makeHostObserver(wrapper.effect().instance()->effectHandle());
        ASSERT_NE(observer, nullptr);
        observer->stageBegan("quilt");
        observer->blockLaid({1, 2, 3, 4, 5, 6, 7});
        observer->note("100% done");
        observer->stageEnded("quilt");
    });
    EXPECT_THAT(diary.lines, ElementsAre("began quilt", "note 100% done", "ended quilt"));
    EXPECT_THAT(diary.blocks, ElementsAre(ElementsAre(1, 2, 3, 4, 5, 6, 7)));
    tiny.host().setListener(nullptr);
    insideRender(tiny, [](const Orvane::OvOfxHostWrapper& wrapper) {
        EXPECT_EQ(Orvane::makeHostObserver(wrapper.effect().instance()->effectHandle()), nullptr);
    });
}

}  // namespace
}  // namespace Tesseret::Fixtures
