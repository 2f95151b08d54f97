// Whole renders by the built plug-in in the embedded host.

#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "engine/map/PixelTraits.h"
#include "tests/endToEnd/Rig.h"
#include "tests/fixtures/ReferenceQuilt.h"

namespace Tesseret::Fixtures {
namespace {

using namespace Tesseret::Host;
using namespace Tesseret::EndToEnd;
using Orvane::Engine::PixelRGBA16;
using Orvane::Engine::PixelRGBA8;
using Orvane::Engine::PixelRGBAf;
using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

class Depths : public ::testing::TestWithParam<Depth> {};
INSTANTIATE_TEST_SUITE_P(All, Depths, ::testing::Values(Depth::Byte, Depth::Short, Depth::Float));

/// The composite where the texture counts whole: a step that only shows in the last bit of a float.
template <typename Pixel>
Pixel composited(const Pixel& source, const Pixel& texture)
{
    const auto mix = [](auto s, auto t) { return static_cast<decltype(s)>(s + (t - s)); };
    return {mix(source.r, texture.r), mix(source.g, texture.g), mix(source.b, texture.b),
            texture.a};
}

template <typename Pixel>
void expectReference(Depth depth)
{
    const auto source = texturePicture(kBounds, depth, 1);
    Orvane::Reference::Image<Pixel> texture(0, 0, 96, 70);
    for (int y = 0; y < 70; ++y) {
        for (int x = 0; x < 96; ++x) texture.at(x, y) = *source->pixel<Pixel>(x, y);
    }
    const Orvane::Reference::Settings settings{.blockW = 30,
                                               .blockH = 30,
                                               .overlapW = 10,
                                               .overlapH = 10,
                                               .numSamples = 4,
                                               .seed = 9,
                                               .threads = 2,
                                               .boxX0 = 19,
                                               .boxY0 = 14,
                                               .boxX1 = 76,
                                               .boxY1 = 56};
    const auto expected =
        Orvane::Reference::Quilt<Pixel>(settings, {&texture}).cover(0, 0, 96, 70).pixels;
    const Picture picture = plainRender(depth);
    for (int y = 0; y < 70; ++y) {
        for (int x = 0; x < 96; ++x) {
            const Pixel pixel = composited(
                texture.at(x, y),
                expected[static_cast<std::size_t>(y) * 96 + static_cast<std::size_t>(x)]);
            ASSERT_EQ(*picture.pixel<Pixel>(x, y), pixel) << x << ' ' << y;
        }
    }
}

TEST(Render, AgreesWithThePlainReferenceAtEveryDepth)
{
    expectReference<PixelRGBA8>(Depth::Byte);
    expectReference<PixelRGBA16>(Depth::Short);
    expectReference<PixelRGBAf>(Depth::Float);
}

TEST_P(Depths, TheSameTwiceAndWithAnyNumberOfThreads)
{
    const Picture expected = plainRender(GetParam());
    for (const unsigned int threads : {1u, 2u, 4u, 7u}) {
        Rig rig(GetParam(), {}, threads);
        EXPECT_TRUE(samePixels(rig.render(), expected)) << threads << " threads";
        EXPECT_TRUE(samePixels(rig.render(1), expected)) << threads << " threads, again";
    }
}

TEST(Render, SurvivesInputsThatAreSmallerThanTheySay)
{
    for (const OfxRectI& change : {OfxRectI{20, 10, -30, -5}, OfxRectI{95, 69, 0, 0},
                                   OfxRectI{200, 0, 200, 0}, OfxRectI{-300, 0, -300, 0}}) {
        HostQuirks quirks;
        quirks.boundsChange = change;
        Rig(Depth::Byte, quirks).render();
        MaskedRig(Depth::Byte, quirks).render();
    }
}

TEST(Render, AHostThatRunsNoThreadsLeavesTheOutput)
{
    HostQuirks quirks;
    quirks.multiThreadStatus = kOfxStatFailed;
    Rig rig(Depth::Byte, quirks);
    EXPECT_EQ(rig.render().channel(40, 40, 3), 0.0);
}

TEST(Render, RecoversFromAnAbortAtEveryPoll)
{
    Rig rig;
    expectRecovery(rig, kAbort, [](unsigned int, OfxStatus status, const Picture& picture) {
        EXPECT_EQ(status, kOfxStatOK);
        // The texture is written once quilting has finished; before that nothing is.
        EXPECT_TRUE(isBlack(picture) || picture.channel(95, 69, 3) != 0.0);
    });
}

TEST(Render, RecoversFromEveryMissingImage)
{
    Rig rig;
    expectRecovery(rig, kFetch, [](unsigned int, OfxStatus status, const Picture& picture) {
        EXPECT_EQ(status, kOfxStatOK);
        EXPECT_TRUE(isBlack(picture));
    });
}

TEST(Render, GoesOnWhenMemoryCannotBeHadOrLocked)
{
    for (const Fault& fault : {kAllocation, kLock}) {
        Rig rig;
        expectRecovery(rig, fault, [](unsigned int, OfxStatus status, const Picture&) {
            EXPECT_EQ(status, kOfxStatOK);
        });
    }
}

TEST(Render, ConsistentFramesKeepTheLayoutUntilItIsDiscarded)
{
    Rig rig;
    Instance& instance = rig.instance();
    instance.set("temporalConsistancy", 1);
    const Picture first = rig.render(0);
    instance.set("seed", 1234);
    EXPECT_TRUE(samePixels(rig.render(1), first));
    EXPECT_TRUE(samePixels(rig.render(17), first));
    instance.purgeCaches();
    EXPECT_FALSE(samePixels(rig.render(18), first)) << "purged";
    instance.set("seed", 9);
    EXPECT_TRUE(samePixels(rig.render(0), first)) << "frame 0 draws anew";
    rig.connect("Source", plainPicture(kBounds, Depth::Byte, 0.5));
    EXPECT_EQ(rig.render(2).channel(50, 50, 0), 127.0) << "recorded places, new pixels";
    instance.set("seed", 1234);
    instance.set("temporalConsistancy", 0);
    rig.render(3);
    instance.set("temporalConsistancy", 1);
    rig.connect("Source", texturePicture(kBounds, Depth::Byte, 1));
    EXPECT_FALSE(samePixels(rig.render(4), first)) << "switched off in between";
}

TEST(Render, TakesTexturesThatAreConnectedAndInUse)
{
    Rig rig(Depth::Byte, {}, 2, kOfxImageEffectContextGeneral);
    Instance& instance = rig.instance();
    instance.set("fillRegion", 0);
    const Picture fromSource = rig.render();
    instance.set("useTexture2", 1);
    EXPECT_TRUE(samePixels(rig.render(), fromSource)) << "not connected";
    rig.connect("Texture2", plainPicture({0, 0, 300, 200}, Depth::Byte, 0.25));
    EXPECT_EQ(rig.render().channel(50, 50, 1), 63.0);
    rig.connect("Texture2", plainPicture({0, 0, 300, 200}, Depth::Byte, 0.25), {100.0, 200.0});
    EXPECT_TRUE(samePixels(rig.render(), fromSource)) << "no image at this time";
    instance.set("useTexture2", 0);
    rig.connect("Texture2", plainPicture({0, 0, 300, 200}, Depth::Byte, 0.25));
    EXPECT_TRUE(samePixels(rig.render(), fromSource)) << "not in use";
}

TEST(Render, TellsAnObserverWhatItDoes)
{
    Rig rig(Depth::Byte, {}, 2, kOfxImageEffectContextGeneral);
    NoteListener listener;
    rig.host().setListener(&listener);
    const Picture picture = rig.render();  // "Matte->Alpha", the default
    EXPECT_FALSE(isBlack(picture));
    EXPECT_THAT(listener.notes, ::testing::SizeIs(1));
    EXPECT_THAT(listener.notes, Each(HasSubstr("the whole picture is filled")));
    EXPECT_THAT(listener.blocks, ::testing::SizeIs(5 * 4));
    EXPECT_EQ(listener.open, 0);
    rig.host().setListener(nullptr);
    EXPECT_TRUE(samePixels(rig.render(), picture));
}

TEST(Render, ValuesOutOfRangeNeitherHangNorFault)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    Rig rig;
    Instance& instance = rig.instance();
    for (const int number : {-2147483647, -1, 0, 9000000, 2147483647}) {
        for (const char* name : {"blockSize", "overlap", "blendSize", "seed"}) {
            instance.set("blockSize", 30);
            instance.set("overlap", 10);
            instance.set("blendSize", 2);
            instance.set(name, number);
            EXPECT_FALSE(isBlack(rig.render())) << name << ' ' << number;
        }
    }
    for (const double corner : {nan, -1e300, 1e300, 0.5}) {  // 0.5: a box without width
        instance.set("blockSize", 30);
        instance.set("sampleCorner1", std::vector{corner, 0.25});
        instance.set("sampleCorner2", std::vector{corner, 0.75});
        EXPECT_EQ(instance.set("numSamples", 0), kOfxStatReplyDefault);
        EXPECT_FALSE(isBlack(rig.render())) << corner;
    }
}

}  // namespace
}  // namespace Tesseret::Fixtures
