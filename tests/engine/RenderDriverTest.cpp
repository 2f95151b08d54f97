#include <algorithm>
#include <limits>

#include <gmock/gmock.h>

#include "engine/RecordBytes.h"
#include "engine/RenderDriver.h"
#include "engine/map/ExactMath.h"
#include "tests/fixtures/FakeRenderContext.h"
#include "tests/fixtures/FakeServices.h"

namespace Orvane::Engine {
namespace {

using Testing::CountingObserver;
using ::testing::ElementsAre;
using Testing::FakeRenderContext;
using Testing::FakeServices;
using Testing::noise;
using ::testing::SizeIs;
using Testing::solid;
using Testing::TestMap;

/// An instance with a source of 40 x 30 noise, rendered at one depth.
template <typename Pixel>
struct Rig {
    Rig()
    {
        context.connect(context.source, source);
        context.connect(context.output, output);
        context.window = {0, 0, 40, 30};
        context.watcher = &observer;
    }
    std::vector<Pixel> render(double frame = 0.0)
    {
        context.frame = frame;
        context.status = {};
        observer = {};
        clear();
        renderFrame(context, state, kPixelKind<Pixel>);
        EXPECT_EQ(observer.open, 0);
        return output.pixels();
    }
    void clear() { std::ranges::fill(output.pixels(), Testing::grey<Pixel>(0.25f)); }
    std::vector<Pixel> untouched()
    {
        return std::vector<Pixel>(output.pixels().size(), Testing::grey<Pixel>(0.25f));
    }

    FakeServices services{2};
    TestMap<Pixel> source = noise<Pixel>(40, 30, 5);
    TestMap<Pixel> output = solid<Pixel>(40, 30, 0.0f);
    CountingObserver observer;
    FakeRenderContext context;
    TemporalState state;
};

template <typename Pixel>
class RenderDriver : public ::testing::Test {};
using Depths = ::testing::Types<PixelRGBA8, PixelRGBA16, PixelRGBAf>;
TYPED_TEST_SUITE(RenderDriver, Depths);

TYPED_TEST(RenderDriver, FillsTheWindowAndReleasesEveryImage)
{
    Rig<TypeParam> rig;
    rig.context.window = {5, 3, 100, 25};  // leaves the output image
    const auto image = rig.render();
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) {
            const bool inside = x >= 5 && y >= 3 && y < 25;
            const auto& pixel =
                image[static_cast<std::size_t>(y) * 40 + static_cast<std::size_t>(x)];
            EXPECT_EQ(pixel == Testing::grey<TypeParam>(0.25f), !inside) << x << ' ' << y;
        }
    }
    EXPECT_EQ(rig.context.released, 2);
    EXPECT_THAT(rig.observer.stages, ElementsAre("quilt", "composite"));
    EXPECT_THAT(rig.observer.blocks, SizeIs(5 * 3));
    EXPECT_EQ(rig.observer.lastProgress, 1.0);
}

/// Carries the record of one instance to another.
class Carrier final : public RecordExchange {
public:
    std::span<const std::byte> offered() override { return record; }
    void taken(bool isUsable) override { answers.push_back(isUsable); }
    bool isWanted() override { return true; }
    void made(std::span<const std::byte> bytes) override
    {
        record.assign(bytes.begin(), bytes.end());
    }

    std::vector<std::byte> record;
    std::vector<bool> answers;
};

TYPED_TEST(RenderDriver, RepeatsTheBlocksOfAnotherInstance)
{
    for (const bool isMasked : {false, true}) {
        Carrier carrier;
        Rig<TypeParam> first, second;
        for (Rig<TypeParam>* const rig : {&first, &second}) {
            rig->context.exchange = &carrier;
            rig->context.fill.temporalConsistency = true;
            rig->context.fill.blendWidth = 1;
            rig->context.fill.luminanceMatch = true;
            rig->context.fill.luminanceBlur = 3.0f;
            rig->context.fill.pathWidth = 2.0f;
            if (!isMasked) continue;
            rig->context.fill.maskOrigin = MaskOrigin::SourceAlpha;
            for (int y = 0; y < 30; ++y) {
                for (int x = 0; x < 40; ++x) {
                    const bool inside = x > 12 && x < 26 && y > 9 && y < 19;
                    rig->source.at(x, y).a =
                        PixelTraits<TypeParam>::stored(inside ? PixelTraits<TypeParam>::kMax : 0);
                }
            }
        }
        const auto fresh = first.render(5);
        EXPECT_TRUE(carrier.answers.empty());
        const std::vector<std::byte> kept = carrier.record;
        const auto repeated = first.render(6);
        EXPECT_EQ(second.render(6), repeated);
        EXPECT_THAT(second.observer.stages, ElementsAre("replay", "composite"));
        EXPECT_EQ(second.render(7), first.render(7));
        EXPECT_THAT(carrier.answers, ElementsAre(true)) << "asked once";
        EXPECT_EQ(carrier.record, kept) << "a replay records nothing";
        EXPECT_EQ(recordBytes(second.state), kept);

        // At frame 0, and without consistency, nothing is taken.
        for (const double frame : {0.0, 5.0}) {
            Rig<TypeParam> other;
            other.context.exchange = &carrier;
            other.context.fill.temporalConsistency = frame == 0.0;
            other.render(frame);
            EXPECT_THAT(other.observer.stages, ElementsAre("quilt", "composite"));
        }
    }
}

// Whatever the bytes are, they are refused or replayed.
TYPED_TEST(RenderDriver, RefusesADamagedRecord)
{
    Carrier carrier;
    Rig<TypeParam> rig;
    rig.context.exchange = &carrier;
    rig.context.fill.temporalConsistency = true;
    const auto fresh = rig.render(5);
    const std::vector<std::byte> whole = carrier.record;
    const auto renderWith = [&](std::vector<std::byte> record) {
        carrier.record = std::move(record);
        carrier.answers.clear();
        rig.state.discard();
        return rig.render(6);
    };
    for (std::size_t length = 1; length < whole.size(); length += 37) {
        EXPECT_EQ(renderWith({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)}),
                  fresh);
        EXPECT_THAT(carrier.answers, ElementsAre(false)) << length;
    }
    std::vector<std::byte> longer = whole;
    longer.push_back({});
    renderWith(longer);
    EXPECT_THAT(carrier.answers, ElementsAre(false));
    constexpr std::size_t kAfterBounds = 20;
    for (std::size_t place = kAfterBounds; place < whole.size(); place += 3) {
        std::vector<std::byte> changed = whole;
        changed[place] ^= std::byte{0xf5};
        renderWith(changed);
        EXPECT_THAT(carrier.answers, SizeIs(1));
    }
}

TYPED_TEST(RenderDriver, ReplaysTheSameBlocksWhileConsistent)
{
    for (const int blend : {0, 1}) {
        Rig<TypeParam> rig;
        rig.context.fill.temporalConsistency = true;
        rig.context.fill.blendWidth = rig.context.fill.blendHeight = blend;
        const auto first = rig.render(0);
        const auto again = rig.render(5);
        EXPECT_THAT(rig.observer.stages, ElementsAre("replay", "composite"));
        if (blend == 0) {
            EXPECT_EQ(first, again);
        }
        EXPECT_EQ(first[0], again[0]) << "no fringe at the corner";

        rig.context.fill.seed = 4;
        EXPECT_EQ(rig.render(6), again) << "recorded, not drawn";
        EXPECT_NE(rig.render(0), first) << "frame 0 draws anew";
        rig.context.fill.temporalConsistency = false;
        rig.render(7);
        rig.context.fill.temporalConsistency = true;
        rig.render(8);
        EXPECT_THAT(rig.observer.stages, ElementsAre("quilt", "composite"))
            << "switched off in between";
        rig.state.discard();
        rig.render(9);
        EXPECT_THAT(rig.observer.stages, ElementsAre("quilt", "composite"));
        EXPECT_EQ(rig.context.released, 14);
    }
}

TYPED_TEST(RenderDriver, ReplaySurvivesWhateverChangedInBetween)
{
    Rig<TypeParam> rig;
    rig.context.fill.temporalConsistency = true;
    auto texture = noise<TypeParam>(30, 30, 9);
    rig.context.connect(rig.context.textures[1], texture);
    rig.render(0);
    const auto full = rig.render(1);

    rig.context.window = {0, 0, 20, 15};
    const auto clipped = rig.render(2);
    EXPECT_EQ(clipped[5 * 40 + 5], full[5 * 40 + 5]);
    EXPECT_EQ(clipped[20 * 40 + 30].a, 0) << "nothing is placed past the window";
    rig.context.window = {-50, -50, 500, 500};
    EXPECT_EQ(rig.render(3), full);

    auto large = noise<TypeParam>(90, 80, 2);
    rig.context.connect(rig.context.source, large);
    EXPECT_EQ(rig.render(4), full) << "the blocks come from the texture";
    rig.state.blockList[0].textureIndex = 2;  // a texture no longer in use
    rig.state.blockList[1].seamH.clear();     // an unfinished row
    rig.render(5);
    EXPECT_NE(rig.output.pixels(), rig.untouched());
}

/// Renders with a mask for a part of the image, in any pixel kind.
template <typename Pixel, typename Kind>
std::vector<Pixel> renderWithMatte(Polarity polarity)
{
    Rig<Pixel> rig;
    rig.context.fill.maskOrigin = MaskOrigin::Matte;
    rig.context.fill.maskPolarity = polarity;
    rig.context.fill.pathWidth = 2.0f;
    rig.context.fill.edgeBlend = 1.0f;
    TestMap<Kind> matte(26, 22, 6, 4);
    constexpr bool kIsRGBA = requires(Kind k)
    {
        k.a;
    };
    for (int y = 0; y < 22; ++y) {
        for (int x = 0; x < 26; ++x) {
            const bool masked = x >= 5 && x < 17 && y >= 6 && y < 16;
            const float value = masked == (polarity == Polarity::White) ? 1.0f : 0.0f;
            if constexpr (kIsRGBA) {
                matte.at(x, y) = Testing::grey<Kind>(1.0f - value);  // only the alpha counts
                matte.at(x, y).a = PixelTraits<Kind>::stored(value * PixelTraits<Kind>::kMax);
            } else {
                matte.at(x, y) = static_cast<Kind>(value * MaskTraits<Kind>::kMax);
            }
        }
    }
    rig.context.connect(rig.context.matte, matte);
    const auto before = matte.pixels();
    auto image = rig.render();
    EXPECT_TRUE(before == matte.pixels());
    EXPECT_THAT(rig.observer.notes, SizeIs(0));
    EXPECT_EQ(rig.context.released, 3);
    return image;
}

TYPED_TEST(RenderDriver, TakesMattesOfEveryKind)
{
    const auto expected =
        renderWithMatte<TypeParam, typename PixelTraits<TypeParam>::Mask>(Polarity::White);
    for (const Polarity polarity : {Polarity::White, Polarity::Black}) {
        EXPECT_EQ((renderWithMatte<TypeParam, Pixel8>(polarity)), expected);
        EXPECT_EQ((renderWithMatte<TypeParam, Pixel16>(polarity)), expected);
        EXPECT_EQ((renderWithMatte<TypeParam, Pixel32f>(polarity)), expected);
        EXPECT_EQ((renderWithMatte<TypeParam, PixelRGBA8>(polarity)), expected);
        EXPECT_EQ((renderWithMatte<TypeParam, PixelRGBA16>(polarity)), expected);
        EXPECT_EQ((renderWithMatte<TypeParam, PixelRGBAf>(polarity)), expected);
    }
}

TYPED_TEST(RenderDriver, DrawsAnewAfterARenderThatHadNoRoom)
{
    Rig<TypeParam> rig;
    rig.context.fill.temporalConsistency = true;
    rig.services.memory.refuseAll = true;
    ::testing::internal::CaptureStderr();
    rig.render(1);
    ::testing::internal::GetCapturedStderr();
    EXPECT_THAT(rig.observer.blocks, SizeIs(0));
    EXPECT_FALSE(rig.state.valid);
    rig.services.memory.refuseAll = false;
    rig.render(2);
    EXPECT_THAT(rig.observer.stages, ElementsAre("quilt", "composite"));
    EXPECT_TRUE(rig.state.valid);
}

TEST(RenderDriver8, BlocksOfAnAbortedOrFailedRenderAreNotReplayed)
{
    Rig<PixelRGBA8> rig;
    rig.context.fill.temporalConsistency = true;
    const auto abortAt = [](void* counter, int*) {
        return --*static_cast<int*>(counter) < 0 ? 1 : 0;
    };
    int polls = 0;
    for (int allowed = 0;; allowed += 1 + allowed / 4) {
        rig.state.discard();
        rig.context.frame = 1;
        rig.context.status = {&polls, abortAt, 0, 0};
        polls = allowed;
        rig.clear();
        renderFrame(rig.context, rig.state, PixelKind::RGBA8);
        EXPECT_EQ(rig.observer.open, 0) << "every stage ends";
        if (rig.context.status.aborted == 0) break;
        EXPECT_FALSE(rig.state.valid);
        ASSERT_LT(allowed, 10000) << "never came to its end";
    }
    EXPECT_TRUE(rig.state.valid);
    // An abort during the replay leaves both the output and the records as they were.
    const std::size_t records = rig.state.blockList.size();
    polls = 3;
    rig.context.status = {&polls, abortAt, 0, 0};
    rig.clear();
    renderFrame(rig.context, rig.state, PixelKind::RGBA8);
    EXPECT_EQ(rig.output.pixels(), rig.untouched());
    EXPECT_TRUE(rig.state.valid);
    EXPECT_EQ(rig.state.blockList.size(), records);
}

TEST(RenderDriver8, RendersNothingWithoutWhatItNeeds)
{
    struct Case {
        const char* what;
        void (*spoil)(Rig<PixelRGBA8>&);
    };
    const Case cases[] = {
        {"no source", [](auto& rig) { rig.context.source = nullptr; }},
        {"no output", [](auto& rig) { rig.context.output = nullptr; }},
        {"empty window",
         [](auto& rig) {
             rig.context.window = {7, 3, 7, 20};
         }},
        {"window turned over",
         [](auto& rig) {
             rig.context.window = {20, 3, 7, 20};
         }},
        {"output without pixels", [](auto& rig) { rig.output->borrow(nullptr, 160); }},
        {"source of another depth",
         [](auto& rig) {
             static auto deep = noise<PixelRGBA16>(40, 30, 5);
             rig.context.connect(rig.context.source, deep);
         }},
    };
    for (const Case& c : cases) {
        Rig<PixelRGBA8> rig;
        rig.context.fill.temporalConsistency = true;
        c.spoil(rig);
        EXPECT_EQ(rig.render(), rig.untouched()) << c.what;
        EXPECT_FALSE(rig.state.valid) << c.what;
    }
}

TEST(RenderDriver8, PrefersTheDepthOfTheImageToTheAnnouncedOne)
{
    Rig<PixelRGBA8> rig;
    rig.clear();
    renderFrame(rig.context, rig.state, PixelKind::RGBAf);
    EXPECT_NE(rig.output.pixels(), rig.untouched());
}

TEST(RenderDriver8, TakesTheTexturesInUse)
{
    for (const bool first : {false, true}) {
        for (const bool third : {false, true}) {
            Rig<PixelRGBA8> rig;
            auto a = solid<PixelRGBA8>(30, 30, 0.5f), b = solid<PixelRGBA8>(30, 30, 0.75f);
            if (first) rig.context.connect(rig.context.textures[0], a);
            if (third) rig.context.connect(rig.context.textures[2], b);
            const auto image = rig.render();
            const auto expected = first ? a.at(0, 0) : b.at(0, 0);
            if (first || third) {
                EXPECT_EQ(image[0], expected) << "ties keep the earlier texture";
                EXPECT_EQ(image[600], expected);
            } else {
                EXPECT_EQ(
                    image[0].a,
                    rig.source.at(rig.observer.blocks[0].srcX, rig.observer.blocks[0].srcY).a);
            }
        }
    }
}

TEST(RenderDriver8, SurvivesValuesOutOfRange)
{
    Rig<PixelRGBA8> rig;
    rig.context.fill.sampleBox = {-kNumberLimit, 0, 0, kNumberLimit};
    rig.context.fill.blockSize = 9000000;
    rig.context.fill.blendWidth = kNumberLimit;
    rig.context.fill.blendHeight = 9000000;
    rig.render();
    EXPECT_NE(rig.output.pixels(), rig.untouched());

    rig.context.fill.sampleBox = {};
    rig.context.fill.blockSize = 0;
    rig.context.fill.overlap = -5;
    rig.context.fill.blendWidth = -kNumberLimit;
    rig.context.fill.numSamples = -3;
    rig.context.window = {0, 0, 8, 8};  // a block is one pixel here
    rig.render(std::numeric_limits<double>::quiet_NaN());
    EXPECT_NE(rig.output.pixels(), rig.untouched());
}

TEST(RenderDriver8, NotesThatItFillsEverythingWithoutTheRequestedMask)
{
    Rig<PixelRGBA8> rig;
    rig.render();
    EXPECT_THAT(rig.observer.notes, SizeIs(0));
    rig.context.fill.maskOrigin = MaskOrigin::Matte;
    rig.render();
    EXPECT_THAT(rig.observer.notes, SizeIs(1));
}

}  // namespace
}  // namespace Orvane::Engine
