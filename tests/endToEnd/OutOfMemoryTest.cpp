// The heap runs out for the plug-in, at each of its allocations in turn, and stays empty until the
// action ends: no exception may reach the host's frames, nor its threads.

#include <functional>

#include "tests/endToEnd/Rig.h"
#include "tests/fixtures/PluginMemory.h"

namespace Tesseret::Fixtures {
namespace {

using namespace Tesseret::Host;
using namespace Tesseret::EndToEnd;

const void* insideOf(TestHost& test)
{
    return reinterpret_cast<const void*>(test.effect().plugin().mainEntry);
}

/// Runs an action with ever more memory until it needs no more. Each run that lacks some returns 8
/// and leaks nothing; `check` is called after each run with the memory restored.
void expectMemoryStatus(const std::function<OfxStatus()>& action,
                        const std::function<void()>& check)
{
    for (unsigned int k = 1;; ++k) {
        SCOPED_TRACE(k);
        const long before = PluginMemory::live();
        PluginMemory::failFrom(k);
        const OfxStatus status = action();
        const bool wasShort = PluginMemory::hasFailed();
        PluginMemory::recover();
        EXPECT_EQ(PluginMemory::live(), before);
        if (!wasShort) {
            EXPECT_EQ(status, kOfxStatOK);
            EXPECT_GT(k, 1u);
            return;
        }
        ASSERT_EQ(status, kOfxStatErrMemory);
        check();
        if (::testing::Test::HasFailure()) return;
    }
}

void expectRendersRecover(Rig& rig)
{
    const Picture expected = rig.render();
    [[maybe_unused]] const PluginMemory memory(insideOf(rig));
    unsigned int renders = 0;
    expectMemoryStatus(
        [&] {
            Picture output;
            return rig.render(0, kBounds, output);
        },
        [&] {
            const Fixtures::Counters counters = rig.calls().counters();
            EXPECT_EQ(counters.imagesFetched, counters.imagesReleased);
            EXPECT_EQ(counters.blocksLive, 0u);
            if (renders++ % 50 == 0) {
                EXPECT_TRUE(samePixels(rig.render(), expected));
            }
        });
    EXPECT_TRUE(samePixels(rig.render(), expected));
}

TEST(OutOfMemory, IsTheStatusOfARenderOnAnyNumberOfThreads)
{
    for (const unsigned int threads : {1u, 3u}) {
        SCOPED_TRACE(threads);
        Rig plain(Depth::Byte, {}, threads);
        expectRendersRecover(plain);
        MaskedRig masked(Depth::Byte, {}, threads);
        expectRendersRecover(masked);
    }
}

TEST(OutOfMemory, IsTheStatusOfDescribingAndCreating)
{
    Rig rig;
    Instance& instance = rig.instance();
    const auto nothing = [] {};
    const PluginMemory memory(insideOf(rig));
    expectMemoryStatus([&] { return rig.effect().sendDescribe(); }, nothing);
    for (const char* context : {kOfxImageEffectContextFilter, kOfxImageEffectContextGeneral}) {
        expectMemoryStatus([&] { return rig.effect().sendDescribeInContext(context); }, nothing);
    }
    EXPECT_EQ(instance.action(kOfxActionDestroyInstance), kOfxStatOK);
    const auto hasInstance = [&] {
        return instance.properties().pointerOr(kOfxPropInstanceData, nullptr) != nullptr;
    };
    expectMemoryStatus(
        [&] {
            const OfxStatus status = instance.action(kOfxActionCreateInstance);
            // Destroying needs no memory.
            return status == kOfxStatOK ? instance.action(kOfxActionDestroyInstance) : status;
        },
        [&] { EXPECT_FALSE(hasInstance()); });
    EXPECT_EQ(instance.action(kOfxActionCreateInstance), kOfxStatOK);
}

}  // namespace
}  // namespace Tesseret::Fixtures
