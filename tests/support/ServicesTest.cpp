#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "libraries/services/HostServices.h"
#include "products/OFX/Support/Observer.h"
#include "tests/support/TinyEffect.h"

namespace Tesseret::Fixtures {
namespace {

using ::testing::ElementsAre;

/// Runs something inside the render action of an instance.
void insideRender(TinyHost& tiny, const std::function<void(Orvane::OvOfxHostWrapper&)>& work)
{
    const auto instance = tiny.create();
    tinyBehaviour().onRender = work;
    tiny.calls().reset();
    EXPECT_EQ(instance->renderOnly({.window = {0, 0, 8, 4}}, nullptr), kOfxStatOK);
    tinyBehaviour().onRender = nullptr;
}

TEST(ImageMemory, IsAllocatedForTheRunningEffectWhereANullEffectIsRefused)
{
    Fixtures::HostQuirks quirks;
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
    EXPECT_EQ(tiny.calls().counters().blocksLive, 0u);
}

TEST(ImageMemory, IsNotAllocatedAgainWhenTheHostHasNone)
{
    TinyHost tiny;
    insideRender(tiny, [&](const Orvane::OvOfxHostWrapper&) {
        tiny.quirks().failAllocation = 1;
        EXPECT_EQ(Orvane::imageMemoryService().allocate(1000), nullptr);
        EXPECT_EQ(tiny.calls().counters().allocations, 1u);
    });
}

TEST(Threads, RunOnBehalfOfTheEffectOfTheCallingThread)
{
    Fixtures::HostQuirks quirks;
    quirks.memoryRefusesNullEffect = true;
    TinyHost tiny(quirks);
    insideRender(tiny, [&](const Orvane::OvOfxHostWrapper&) {
        Orvane::ThreadService& threads = Orvane::threadService();
        EXPECT_EQ(threads.numCPUs(), 2u);
        EXPECT_FALSE(threads.isSpawnedThread());
        // Often enough that a thread of the host runs its share even where the calling one is fast.
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
    bool wantsMaps(Host::Instance&) override { return wants; }
    void mapMade(Host::Instance&, const TesseretMapV1& map) override
    {
        const auto* const top = reinterpret_cast<const float*>(
            reinterpret_cast<const std::byte*>(map.pixels) + map.rowBytes);
        add("map", map.name);
        numbers = {map.bounds.x1,
                   map.bounds.y1,
                   map.bounds.x2,
                   map.bounds.y2,
                   map.fillRect.x1,
                   map.fillRect.y1,
                   map.fillRect.x2,
                   map.fillRect.y2,
                   static_cast<int>(map.full),
                   static_cast<int>(map.pixels[1]),
                   static_cast<int>(top[1])};
    }
    void pathFound(Host::Instance&, const TesseretPathV1& path) override
    {
        for (int i = 0; i < path.count; ++i) points.push_back({path.points[i].x, path.points[i].y});
    }

    bool wants = true;
    std::vector<int> numbers;  ///< of the last map
    std::vector<std::vector<int>> points;
    std::vector<std::string> lines;
    std::vector<std::vector<int>> blocks;

private:
    void add(const char* what, std::string_view text)
    {
        lines.push_back(std::string(what) + " " + std::string(text));
    }
};

TEST(Observer, NotifiesAHostThatListensAndIsNullOtherwise)
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

    // A map's bounds and row layout arrive unchanged.
    insideRender(tiny, [&](const Orvane::OvOfxHostWrapper& wrapper) {
        std::vector<float> topDown{4, 5, 6, 1, 2, 3};
        Orvane::Engine::Map<float> map;
        map.setSize(3, 2);
        map.placeAt(-7, 9);
        map.borrow(&topDown[3], -12);
        const auto observer = Orvane::makeHostObserver(wrapper.effect().instance()->effectHandle());
        EXPECT_TRUE(observer->wantsMaps());
        observer->mapMade({"blocks", &map, 6.0f, {-10, 5, 20, 25}});
        observer->pathFound(std::vector<Orvane::Engine::PixelPoint>{{1, -2}, {2, -1}}, {});
        diary.wants = false;
        EXPECT_FALSE(observer->wantsMaps());
    });
    EXPECT_EQ(diary.lines.back(), "map blocks");
    EXPECT_THAT(diary.numbers, ElementsAre(-7, 9, -4, 11, -10, 5, 20, 25, 6, 2, 5));
    EXPECT_THAT(diary.points, ElementsAre(ElementsAre(1, -2), ElementsAre(2, -1)));

    tiny.host().setListener(nullptr);
    insideRender(tiny, [](const Orvane::OvOfxHostWrapper& wrapper) {
        EXPECT_EQ(Orvane::makeHostObserver(wrapper.effect().instance()->effectHandle()), nullptr);
    });
}

TEST(Observer, MembersOfItsSuiteMayBeNull)
{
    const TinyHost tiny;
    OfxHost host{nullptr, [](OfxPropertySetHandle, const char*, int) -> const void* {
                     static const TesseretObserverSuiteV1 kEmpty{};
                     return &kEmpty;
                 }};
    int set = 0;
    host.host = reinterpret_cast<OfxPropertySetHandle>(&set);
    OfxHost* const before = Orvane::hostRecord();
    OfxGetPlugin(0)->setHost(&host);
    const auto observer = Orvane::makeHostObserver(nullptr);
    OfxGetPlugin(0)->setHost(before);
    ASSERT_NE(observer, nullptr);
    EXPECT_FALSE(observer->wantsMaps());
    Orvane::Engine::Map<float> map;
    observer->stageBegan("quilt");
    observer->progress(0.5);
    observer->blockLaid({});
    observer->note("");
    observer->mapMade({"blocks", &map, 1.0f, {}});
    observer->pathFound({}, {});
    observer->stageEnded("quilt");
}

}  // namespace
}  // namespace Tesseret::Fixtures
