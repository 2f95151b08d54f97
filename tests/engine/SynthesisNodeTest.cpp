#include <algorithm>
#include <cstdlib>
#include <limits>

#include <gmock/gmock.h>

#include "engine/SynthesisNode.h"
#include "engine/map/PixelMix.h"
#include "engine/mask/AlphaMask.h"
#include "tests/fixtures/FakeRenderContext.h"
#include "tests/fixtures/FakeServices.h"
#include "tests/fixtures/MapKeeper.h"

namespace Orvane::Engine {
namespace {

using ::testing::ElementsAre;
using Testing::FakeServices;
using Testing::KeptMap;
using Testing::MapKeeper;
using Testing::noise;
using Testing::solid;
using Testing::TestMap;

constexpr int kWidth = 96, kHeight = 80;

/// A node that fills a prepared mask of 22 x 18 pixels at (37, 31) in a image of noise.
template <typename Pixel>
struct MaskedFill {
    static constexpr float kMax = PixelTraits<Pixel>::kMax;

    MaskedFill()
    {
        for (int y = 1; y < 17; ++y) {
            for (int x = 1; x < 21; ++x) mask.at(x, y) = kMax;
        }
        settings.fillMask = &*mask;
        settings.textures[0] = &*texture;
        settings.fillAll = false;
        settings.sampleBox = {0, 0, kWidth, kHeight};
        settings.blocks = {20, 20, 6, 6, 1, 1, 2, 3};
        settings.pathWidth = 3.0f;
        settings.edgeBlend = 1.0f;
        settings.luminanceBlur = 10.0f;
        settings.maxPasses = std::numeric_limits<int>::max();
    }
    std::vector<Pixel> run()
    {
        std::ranges::fill(output.pixels(), Testing::grey<Pixel>(0.25f));
        status.aborted = status.errorCode = 0;
        SynthesisNode<Pixel> node(settings, state, watcher != nullptr ? watcher : &observer);
        node.setStatusRecord(&status);
        node.setRegion(0, 0, kWidth - 1, kHeight - 1);
        node.process(*source, *output);
        return output.pixels();
    }

    TestMap<Pixel> source = noise<Pixel>(kWidth, kHeight, 5),
                   texture = noise<Pixel>(kWidth, kHeight, 6);
    TestMap<Pixel> output = solid<Pixel>(kWidth, kHeight, 0.0f);
    TestMap<Pixel32f> mask{22, 18, 37, 31};
    SynthesisSettings<Pixel> settings;
    TemporalState state;
    RenderStatus status;
    Testing::CountingObserver observer;
    RenderObserver* watcher = nullptr;  ///< in place of `observer`
};

template <typename Pixel>
class MaskedNode : public ::testing::Test {};
using Depths = ::testing::Types<PixelRGBA8, PixelRGBA16, PixelRGBAf>;
TYPED_TEST_SUITE(MaskedNode, Depths);

TYPED_TEST(MaskedNode, ChangesTheRegionAndItsBandAndNothingElse)
{
    for (const bool match : {false, true}) {
        const FakeServices services(2);
        MaskedFill<TypeParam> fill;
        fill.settings.luminanceMatch = match;
        const auto image = fill.run();
        const Region& bounds = fill.state.fillBounds;
        EXPECT_EQ(bounds.x0, 37 - 20);
        EXPECT_EQ(bounds.y0, 31 - 20);
        EXPECT_EQ(bounds.x1 - bounds.x0, 22 + 40);
        EXPECT_EQ(bounds.y1 - bounds.y0, 18 + 40);
        int changedInside = 0;
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                const TypeParam& in = fill.source.at(x, y);
                const TypeParam& out =
                    image[static_cast<std::size_t>(y) * kWidth + static_cast<std::size_t>(x)];
                const bool same = in.r == out.r && in.g == out.g && in.b == out.b;
                const bool inside = fill.mask->read(x, y) != 0.0f;
                changedInside += inside && !same;
                // The band reaches 3 boxes of 3 pixels and the blend 3 more beyond the region.
                const bool far = x < 38 - 16 || x >= 58 + 16 || y < 32 - 16 || y >= 48 + 16;
                ASSERT_TRUE(!far || same) << x << ' ' << y;
            }
        }
        EXPECT_GT(changedInside, 250) << "of 320";
        std::vector<std::string> stages{"band", "quilt", "boundary", "composite"};
        if (match) stages.insert(stages.begin() + 2, "luminance");
        EXPECT_EQ(fill.observer.stages, stages);
        EXPECT_EQ(fill.observer.open, 0);
    }
}

TYPED_TEST(MaskedNode, ReplaysBlocksMaskAndGain)
{
    const FakeServices services;
    MaskedFill<TypeParam> fill;
    fill.settings.luminanceMatch = true;
    fill.settings.blocks.blendW = fill.settings.blocks.blendH = 0;
    const auto first = fill.run();
    fill.settings.useStoredBlocks = true;
    fill.settings.seed = 99;
    EXPECT_EQ(fill.run(), first);
}

TYPED_TEST(MaskedNode, RendersTheSameImageWithAnyNumberOfThreads)
{
    std::vector<TypeParam> expected;
    for (const unsigned int threads : {1u, 2u, 4u, 7u}) {
        const FakeServices services(threads);
        MaskedFill<TypeParam> fill;
        fill.settings.luminanceMatch = true;
        const auto image = fill.run();
        if (expected.empty()) expected = image;
        EXPECT_EQ(image, expected) << threads;
    }
}

TEST(MaskedNode8, MatchesTheBrightnessRoundTheRegion)
{
    const FakeServices services;
    MaskedFill<PixelRGBA8> fill;
    std::ranges::fill(fill.source.pixels(), PixelRGBA8{200, 200, 200, 255});
    std::ranges::fill(fill.texture.pixels(), PixelRGBA8{100, 100, 100, 255});
    const auto centre = [&] { return fill.run()[40 * kWidth + 48].r; };
    EXPECT_EQ(centre(), 100);
    fill.settings.luminanceMatch = true;
    EXPECT_NEAR(centre(), 200, 2);
}

TEST(MaskedNode8, SurvivesWhateverLengthsItIsGiven)
{
    const FakeServices services;
    struct Case {
        float pathWidth, edgeBlend, luminanceBlur;
    };
    for (const Case& c : {Case{0, 0, 0}, Case{0, 5, 40}, Case{0.5f, 0.01f, 5}, Case{30, 0, 500},
                          Case{3, 30, 2}, Case{100, 1, 1e9f}}) {
        MaskedFill<PixelRGBA8> fill;
        fill.settings.pathWidth = c.pathWidth;
        fill.settings.edgeBlend = c.edgeBlend;
        fill.settings.luminanceBlur = c.luminanceBlur;
        fill.settings.luminanceMatch = true;
        fill.settings.blocks.numSamples = 1;
        fill.settings.blocks.blockW = fill.settings.blocks.blockH = 60;
        fill.run();
        EXPECT_EQ(fill.status.aborted, 0) << c.pathWidth << ' ' << c.edgeBlend;
    }
}

TEST(MaskedNode8, StopsAtAnAbortAndWhenMemoryRunsOut)
{
    for (int k = 1; k < 60; k += 1 + k / 8) {
        FakeServices services(2);
        MapKeeper keeper;
        MaskedFill<PixelRGBA8> fill;
        fill.watcher = k % 2 == 0 ? &keeper : nullptr;
        fill.settings.luminanceMatch = true;
        services.memory.failAllocation = k;
        ::testing::internal::CaptureStderr();
        fill.run();
        fill.state.discard();
        int left = 20 * k;
        fill.status.abortHandle = &left;
        fill.status.poll = [](void* polls, int*) {
            return --*static_cast<int*>(polls) < 0 ? 1 : 0;
        };
        fill.run();
        ::testing::internal::GetCapturedStderr();
        fill.state.discard();
        EXPECT_TRUE(services.memory.live.empty());
    }
}

/// The composite of one pixel.
template <typename Pixel>
Pixel recomposited(const Pixel& texture, const Pixel& source, float gain, float mask)
{
    using Traits = PixelTraits<Pixel>;
    const auto scaled = [gain](auto channel) {
        return Traits::stored(std::clamp(static_cast<float>(channel) * gain, 0.0f, Traits::kMax));
    };
    const Pixel corrected{scaled(texture.r), scaled(texture.g), scaled(texture.b), texture.a};
    Pixel result = mixed(source, corrected, std::min(mask * Traits::kInverseMax, 1.0f));
    result.a = texture.a;
    return result;
}

/// Gives a map of the state a position, storage and values.
void place(Map<Pixel32f>& map, const Region& region, float fillValue,
           const std::vector<float>& values)
{
    map.setSize(region.x1 - region.x0, region.y1 - region.y0);
    map.placeAt(region.x0, region.y0);
    map.setFillValue(fillValue);
    map.allocate();
    for (int y = region.y0; y < region.y1; ++y) {
        for (int x = region.x0; x < region.x1; ++x) {
            *map.translate(x, y) =
                values[static_cast<std::size_t>(7 * x + y + 100) % values.size()];
        }
    }
}

// A replay without blocks leaves the output as it is, so that only the composite shows.
TYPED_TEST(MaskedNode, CompositesBeforeInAndBehindItsMaps)
{
    constexpr float kMax = PixelTraits<TypeParam>::kMax;
    const FakeServices services(2);
    const Region window{0, 0, 200, 3};
    const Region places[] = {window,           {60, 1, 70, 2},  {-9, -9, 300, 9}, {-50, 0, 1, 3},
                             {199, 0, 230, 3}, {-40, 0, -3, 3}, {205, 0, 230, 3}, {0, 0, 0, 0}};
    for (const Region& maskPlace : places) {
        for (const Region& gainPlace : places) {
            for (const float fillValue : {0.0f, 0.3f * kMax, kMax}) {
                auto source = noise<TypeParam>(fillValue == kMax ? 150 : 200, 3, 1);
                const auto texture = noise<TypeParam>(200, 3, 2);
                auto output = noise<TypeParam>(200, 3, 2);
                TemporalState state;
                place(state.compositeMask, maskPlace, fillValue, {0.0f, kMax, 0.6f * kMax});
                place(state.luminanceGain, gainPlace, 9.0f, {0.5f, 1.0f, 1.7f});
                SynthesisSettings<TypeParam> settings;
                settings.useStoredBlocks = true;
                SynthesisNode<TypeParam> node(settings, state, nullptr);
                ::testing::internal::CaptureStderr();
                node.process(*source, *output);
                ::testing::internal::GetCapturedStderr();
                for (int y = 0; y < 3; ++y) {
                    for (int x = 0; x < 200; ++x) {
                        const float* gain = state.luminanceGain.resolve(x, y);
                        const TypeParam expected = recomposited(
                            texture->read(x, y), source->read(x, y), gain != nullptr ? *gain : 1.0f,
                            state.compositeMask.read(x, y));
                        ASSERT_EQ(output.at(x, y), expected) << x << ' ' << y;
                    }
                }
            }
        }
    }
}

bool areNeighbours(const PixelPoint& a, const PixelPoint& b)
{
    return std::abs(a.x - b.x) <= 1 && std::abs(a.y - b.y) <= 1;
}

// With hard cuts the blocks, the gain and the composite mask together determine every pixel.
TYPED_TEST(MaskedNode, ReportsMapsThatExplainEveryPixel)
{
    const FakeServices services(2);
    MapKeeper keeper;
    MaskedFill<TypeParam> fill;
    fill.settings.luminanceMatch = true;
    fill.settings.blocks.blendW = fill.settings.blocks.blendH = 0;
    const auto unwatched = fill.run();
    fill.state.discard();
    fill.watcher = &keeper;
    ASSERT_EQ(fill.run(), unwatched);

    ASSERT_THAT(keeper.names(),
                ElementsAre("fillMask", "pathBand", "blocks", "compositeMask", "luminanceGain"));
    const KeptMap &region = keeper.maps[0], &band = keeper.maps[1], &blocks = keeper.maps[2],
                  &mask = keeper.maps[3], &gain = keeper.maps[4];
    EXPECT_EQ(region.values, fill.mask.pixels());
    EXPECT_EQ(region.bounds, (Region{37, 31, 59, 49}));
    EXPECT_EQ(region.full, fill.kMax);
    EXPECT_EQ(blocks.full, static_cast<float>(keeper.blocks.size()));
    for (const KeptMap& map : keeper.maps) EXPECT_EQ(map.fillRect, fill.state.fillBounds);
    for (const KeptMap* map : {&band, &blocks, &mask, &gain}) EXPECT_EQ(map->bounds, map->fillRect);

    const Region& all = fill.state.fillBounds;
    for (int y = all.y0; y < all.y1; ++y) {
        for (int x = all.x0; x < all.x1; ++x) {
            const PlacedBlock& block = keeper.blocks[static_cast<std::size_t>(blocks.at(x, y)) - 1];
            const TypeParam texture =
                fill.texture->read(block.srcX + x - block.x, block.srcY + y - block.y);
            const TypeParam expected =
                recomposited(texture, fill.source.at(x, y), gain.at(x, y), mask.at(x, y));
            ASSERT_EQ(fill.output.at(x, y), expected) << x << ' ' << y;
            ASSERT_TRUE(band.at(x, y) == 0.0f || region.at(x, y) == 0.0f);
        }
    }
    ASSERT_GT(keeper.path.size(), 60u);
    EXPECT_TRUE(areNeighbours(keeper.path.front(), keeper.path.back()));
    for (std::size_t i = 0; i < keeper.path.size(); ++i) {
        const PixelPoint& p = keeper.path[i];
        ASSERT_GT(band.at(p.x, p.y), 0.0f);
        ASSERT_TRUE(i == 0 || areNeighbours(p, keeper.path[i - 1]));
    }
}

TYPED_TEST(MaskedNode, ReportsTheBlocksOfAReplayAndMapsOnlyOnRequest)
{
    for (const int blend : {0, 1}) {
        const FakeServices services;
        MapKeeper fresh, replayed;
        MaskedFill<TypeParam> fill;
        fill.settings.blocks.blendW = fill.settings.blocks.blendH = blend;
        fill.watcher = &fresh;
        fill.run();
        fill.settings.useStoredBlocks = true;
        fill.watcher = &replayed;
        fill.run();
        ASSERT_THAT(fresh.names(), ElementsAre("fillMask", "pathBand", "blocks", "compositeMask"));
        ASSERT_THAT(replayed.names(), ElementsAre("blocks", "compositeMask"));
        EXPECT_EQ(replayed.maps[0].values, fresh.maps[2].values);
        EXPECT_EQ(replayed.maps[1].values, fresh.maps[3].values);
        EXPECT_EQ(replayed.blocks.size(), fresh.blocks.size()) << "each reported once";

        fill.state.blockList[0].textureIndex = 1;  // not in use
        fill.run();
        const KeptMap& blocks = replayed.maps[2];
        EXPECT_EQ(blocks.full, fresh.maps[2].full);
        EXPECT_EQ(blocks.at(blocks.bounds.x0, blocks.bounds.y0), 0.0f);
        replayed.wants = false;
        fill.run();
        EXPECT_EQ(replayed.maps.size(), 4u);
    }
}

TYPED_TEST(MaskedNode, TakesMasksOutOfAlphaWithoutTouchingTheInput)
{
    using Traits = PixelTraits<TypeParam>;
    using Mask = typename Traits::Mask;
    const FakeServices services(3);
    auto image = noise<TypeParam>(9, 7, 3, -4, 2);
    const auto before = image.pixels();
    Map<Mask> mask, inverted;
    extractMask(*image, Polarity::White, nullptr, mask);
    extractMask(*image, Polarity::Black, nullptr, inverted);
    Map<Mask> matte, turned;
    matte.assign(mask);
    invertMask<TypeParam>(matte, nullptr, turned);
    for (int y = 2; y < 9; ++y) {
        for (int x = -4; x < 5; ++x) {
            const auto alpha = image->read(x, y).a;
            ASSERT_EQ(mask.read(x, y), alpha);
            ASSERT_EQ(inverted.read(x, y),
                      Traits::stored(Traits::kMax - static_cast<float>(alpha)));
            ASSERT_EQ(turned.read(x, y), inverted.read(x, y));
        }
    }
    EXPECT_EQ(mask.read(-5, 2), Mask{0});
    EXPECT_EQ(image.pixels(), before);
}

TEST(AlphaMaskFloat, IsClampedToTheRange)
{
    const FakeServices services;
    TestMap<PixelRGBAf> image(4, 1);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    image.at(0, 0).a = -2.0f;
    image.at(1, 0).a = 7.0f;
    image.at(2, 0).a = nan;
    image.at(3, 0).a = 0.25f;
    Map<Pixel32f> mask, inverted;
    extractMask(*image, Polarity::White, nullptr, mask);
    extractMask(*image, Polarity::Black, nullptr, inverted);
    const auto row = [](const Map<Pixel32f>& map) {
        return std::vector<float>{map.read(0, 0), map.read(1, 0), map.read(2, 0), map.read(3, 0)};
    };
    EXPECT_THAT(row(mask), ElementsAre(0.0f, 1.0f, 0.0f, 0.25f));
    EXPECT_THAT(row(inverted), ElementsAre(1.0f, 0.0f, 1.0f, 0.75f));
}

}  // namespace
}  // namespace Orvane::Engine
