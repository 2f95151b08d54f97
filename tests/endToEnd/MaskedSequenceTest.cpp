// Masked renders one after another on one instance: frames that stay consistent, and faults.

#include <gmock/gmock.h>

#include "tests/endToEnd/Area.h"
#include "tests/endToEnd/Rig.h"

namespace Tesseret::Fixtures {
namespace {

using namespace Tesseret::Host;
using namespace Tesseret::EndToEnd;
using ::testing::Contains;
using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

/// Luminance is matched, and frames after the first repeat its blocks.
struct SequenceRig : MaskedRig {
    explicit SequenceRig(Depth depth = Depth::Byte) : MaskedRig(depth)
    {
        instance().set("luminanceMatch", 1);
        instance().set("temporalConsistancy", 1);
    }
    Picture renderInto(OfxTime time, OfxRectI bounds, OfxRectI window)
    {
        const ClipFormat format = instance().outputFormat();
        Picture picture(bounds, format.depth, format.components);
        EXPECT_EQ(instance().render({.time = time, .window = window}, picture), kOfxStatOK);
        return picture;
    }
};

class SequenceDepths : public ::testing::TestWithParam<Depth> {};
INSTANTIATE_TEST_SUITE_P(All, SequenceDepths,
                         ::testing::Values(Depth::Byte, Depth::Short, Depth::Float));

TEST_P(SequenceDepths, FramesKeepBlocksMaskAndGainWhateverChanges)
{
    SequenceRig rig(GetParam());
    Instance& instance = rig.instance();
    const Picture first = rig.render(0);
    const auto other = mattePicture([](int x, int y) { return disc(x + 20, y - 9); }, GetParam());
    double frame = 0;
    const auto isKept = [&] { return samePixels(rig.render(++frame), first); };
    EXPECT_TRUE(isKept());
    instance.set("seed", 1234);
    instance.set("pathWidth", 9.0);
    EXPECT_TRUE(isKept()) << "seed and path";
    instance.set("luminanceMatch", 0);
    EXPECT_TRUE(isKept()) << "luminance match";
    rig.connect("Matte", other);
    EXPECT_TRUE(isKept()) << "another matte";
    instance.connect("Matte", nullptr);
    EXPECT_TRUE(isKept()) << "no matte";
    instance.set("fillRegion", 0);
    EXPECT_TRUE(isKept()) << "no mask";

    rig.connect("Matte", other);
    instance.set("fillRegion", 3);
    const auto freshRender = [&] {
        MaskedRig fresh(GetParam());
        fresh.connect("Matte", other);
        fresh.instance().set("seed", 1234);
        fresh.instance().set("pathWidth", 9.0);
        return fresh.render();
    };
    const Picture fresh = freshRender();
    EXPECT_FALSE(samePixels(fresh, first));
    instance.purgeCaches();
    EXPECT_TRUE(samePixels(rig.render(20), fresh)) << "purged";
    EXPECT_TRUE(samePixels(rig.render(21), fresh)) << "the new blocks";
    instance.set("seed", 5);
    instance.set("temporalConsistancy", 0);
    const Picture single = rig.render(22);
    EXPECT_FALSE(samePixels(single, fresh));
    instance.set("seed", 1234);
    instance.set("temporalConsistancy", 1);
    EXPECT_TRUE(samePixels(rig.render(23), fresh)) << "switched off in between";
    instance.set("seed", 5);
    EXPECT_TRUE(samePixels(rig.render(24), fresh));
    EXPECT_TRUE(samePixels(rig.render(0), single)) << "frame 0 draws anew";
}

TEST_P(SequenceDepths, PicturesAndWindowsMayChangeTheirSize)
{
    SequenceRig rig(GetParam());
    const Picture first = rig.render(0);
    double frame = 0;
    for (const OfxRectI& bounds : {OfxRectI{0, 0, 50, 40}, OfxRectI{-20, -30, 200, 150},
                                   OfxRectI{40, 30, 41, 31}, OfxRectI{500, 500, 560, 540}}) {
        const auto source = texturePicture(bounds, GetParam(), 1);
        rig.connect("Source", source);
        const Picture picture = rig.renderInto(++frame, bounds, bounds);
        EXPECT_TRUE(keepsOutside(Area(bounds, disc).grown(reachOf(4, 1)), *source, picture));
    }
    rig.connect("Source", texturePicture(kBounds, GetParam(), 1));
    for (const OfxRectI& window : {OfxRectI{30, 20, 60, 50}, OfxRectI{0, 0, 1, 1}, kBounds}) {
        const Picture picture = rig.renderInto(++frame, kBounds, window);
        const Shape outside = [&](int x, int y) {
            return 1.0 - box(window.x1, window.y1, window.x2, window.y2)(x, y);
        };
        EXPECT_TRUE(keepsOutside(Area(kBounds, outside), first, picture));
    }
}

TEST(MaskedSequence, BlocksOfATextureThatIsGoneAreLeftOut)
{
    SequenceRig rig;
    NoteListener listener;
    rig.host().setListener(&listener);
    for (const char* texture : {"1", "2"}) {
        rig.connect(std::string("Texture") + texture,
                    texturePicture(kBounds, Depth::Byte, texture[0] == '1' ? 7 : 8));
        rig.instance().set(std::string("useTexture") + texture, 1);
    }
    const Picture first = rig.render(0);
    EXPECT_THAT(listener.blocks, Contains(::testing::Field(&TesseretBlockV1::textureIndex, 1)));
    const std::size_t laid = listener.blocks.size();
    rig.instance().set("useTexture2", 0);
    rig.render(1);
    EXPECT_LT(listener.blocks.size(), 2 * laid);
    rig.instance().set("useTexture1", 0);  // the source takes the first one's place
    rig.render(2);
    rig.instance().set("useTexture1", 1);
    rig.instance().set("useTexture2", 1);
    EXPECT_TRUE(samePixels(rig.render(3), first));
}

TEST(MaskedSequence, ARenderWithoutRoomIsNotLaidAgain)
{
    SequenceRig rig;
    const Picture expected = rig.render(0);
    rig.instance().purgeCaches();
    rig.quirks().memoryLimit = 20000;
    CaptureStderr();
    Picture spoilt;
    rig.render(1, kBounds, spoilt);
    GetCapturedStderr();
    rig.quirks().memoryLimit.reset();
    EXPECT_TRUE(samePixels(rig.render(2), expected));
}

/// A small matte, so that the corner of the picture lies outside of the fill rectangle.
struct FaultRig : MaskedRig {
    explicit FaultRig(unsigned int threads = 2) : MaskedRig(Depth::Byte, {}, threads)
    {
        connect("Matte", mattePicture(disc, Depth::Byte, {34, 21, 63, 50}));
        instance().set("luminanceMatch", 1);
    }
};

/// Only the composite writes there.
bool isComposited(const Picture& picture)
{
    return picture.channel(0, 0, 0) == texturePicture(kBounds, Depth::Byte, 1)->channel(0, 0, 0);
}

TEST(MaskedFaults, AnAbortAtAnyPollLeavesTheOutputOrTheTextureInIt)
{
    // How often threads that share their tasks poll depends on which of them takes how many.
    for (const unsigned int threads : {1u, 2u}) {
        FaultRig rig(threads);
        int untouched = 0, textured = 0;
        expectRecovery(rig, kAbort, [&](unsigned int, OfxStatus status, const Picture& picture) {
            EXPECT_EQ(status, kOfxStatOK);
            if (isBlack(picture)) {
                ++untouched;
                EXPECT_TRUE(textured == 0 || threads > 1) << "once it is there it stays";
            } else if (!isComposited(picture)) {
                ++textured;
                EXPECT_NE(picture.channel(48, 35, 3), 0.0);
            }
        });
        EXPECT_GT(untouched, 10);
        EXPECT_GT(textured, 10);
    }
}

TEST(MaskedFaults, WithoutMemoryTheSourceStaysOrTheStatusSaysSo)
{
    for (const Fault& fault : {kAllocation, kLock}) {
        FaultRig rig;
        int failed = 0;
        expectRecovery(rig, fault,
                       [&](unsigned int call, OfxStatus status, const Picture& picture) {
                           EXPECT_TRUE(status == kOfxStatOK || status == kOfxStatErrMemory) << call;
                           EXPECT_EQ(isComposited(picture), status == kOfxStatOK) << call;
                           failed += status == kOfxStatErrMemory;
                       });
        // The temporary maps of the blurs, and all maps of the luminance match.
        EXPECT_GT(failed, 6);
    }
}

TEST(MaskedFaults, EveryMissingImageCountsAsNotConnected)
{
    FaultRig rig;
    const Picture all = [] {
        Rig whole(Depth::Byte, {}, 2, kOfxImageEffectContextGeneral);
        return whole.render();
    }();
    expectRecovery(rig, kFetch, [&](unsigned int call, OfxStatus status, const Picture& picture) {
        EXPECT_EQ(status, kOfxStatOK);
        EXPECT_TRUE(call == 3 ? samePixels(picture, all) : isBlack(picture)) << call;
    });
}

TEST(MaskedFaults, AHostThatRunsNoThreadsLeavesTheOutput)
{
    FaultRig rig;
    const Picture expected = rig.render();
    rig.quirks().multiThreadStatus = kOfxStatFailed;
    for (int seed = 1; seed < 4; ++seed) {
        rig.instance().set("seed", seed);
        EXPECT_TRUE(isBlack(rig.render()));
    }
    rig.quirks().multiThreadStatus.reset();
    rig.instance().set("seed", 9);
    EXPECT_TRUE(samePixels(rig.render(), expected));
}

}  // namespace
}  // namespace Tesseret::Fixtures
