// Quilts into a mask, guided by known pixels, with candidates that avoid the region to fill.

#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/quilt/Quilt.h"
#include "tests/fixtures/FakeServices.h"
#include "tests/fixtures/MapBuilder.h"
#include "tests/fixtures/ReferenceImage.h"
#include "tests/fixtures/ReferenceQuilt.h"

namespace Orvane::Engine {
namespace {

using Testing::FakeServices;
using Testing::noise;
using Testing::referenceOf;
using Testing::solid;
using Testing::TestMap;

/// Patches that are all red or not at all, with a little green and blue. Many candidates differ in
/// the same number of red pixels, so that their errors agree but for the last bits of a float.
template <typename Pixel>
TestMap<Pixel> patches(int width, int height, std::uint32_t seed, int x = 0, int y = 0)
{
    auto map = noise<Pixel>(width, height, seed, x, y);
    using Traits = PixelTraits<Pixel>;
    std::mt19937 random(seed);
    std::vector<bool> red(static_cast<std::size_t>(width * height));
    for (std::size_t i = 0; i < red.size(); ++i) red[i] = random() % 8 < 3;
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            Pixel& pixel = map.at(column, row);
            const bool isRed = red[static_cast<std::size_t>(row / 6 * width + column / 5)];
            pixel.r = Traits::stored(isRed ? Traits::kMax : 0.0f);
            pixel.g = Traits::stored(static_cast<float>(pixel.g) * 0.115f);
            pixel.b = Traits::stored(static_cast<float>(pixel.b) * 0.115f);
        }
    }
    return map;
}

/// A quilt into a mask, and the reference. Everything lies in one plane: the source and the
/// textures, of which the second and the third are placed elsewhere, reach over the fill rectangle.
template <typename Pixel>
struct GuidedQuilt {
    GuidedQuilt()
    {
        for (auto* texture : {&maps[0], &maps[1], &maps[2]}) {
            (*texture)->setEdgeMode(EdgeMode::EdgeMirror, EdgeMode::EdgeMirror);
        }
        source->setEdgeMode(EdgeMode::EdgeMirror, EdgeMode::EdgeMirror);
        // A band of two pixels round the region to fill.
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 50; ++x) {
                const bool inRegion = x >= 14 && x < 36 && y >= 12 && y < 28;
                const bool inBand = x >= 12 && x < 38 && y >= 10 && y < 30;
                weight.at(x, y) = inRegion || !inBand ? 0.0f : static_cast<float>(x) / 255.0f;
                mask.at(x, y) = inRegion ? 255.0f : 0.0f;
            }
        }
    }

    /// Leaves only a corner of the plane clear of the mask.
    void leaveClear(int width, int height)
    {
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 50; ++x) mask.at(x, y) = x < width && y < height ? 0.0f : 255.0f;
        }
    }

    void expectReference(int textureCount, bool weighs, bool avoids)
    {
        const FakeServices services(static_cast<unsigned int>(settings.threads),
                                    Testing::FakeThreads::Mode::InARow);
        BlockSettings blocks{settings.blockW,   settings.blockH,    settings.overlapW,
                             settings.overlapH, settings.blendW,    settings.blendH,
                             settings.step,     settings.numSamples};
        std::vector<Map<Pixel>*> textures;
        std::vector<Reference::Image<Pixel>> plain;
        for (int i = 0; i < textureCount; ++i) {
            textures.push_back(&*maps[static_cast<std::size_t>(i)]);
            plain.push_back(referenceOf(maps[static_cast<std::size_t>(i)]));
        }
        QuiltInputs<Pixel> inputs;
        inputs.fillRect = {5, 4, 46, 37};
        inputs.sampleBox = {settings.boxX0, settings.boxY0, settings.boxX1, settings.boxY1};
        inputs.textures = textures;
        inputs.source = &*source;
        inputs.target = &*target;
        inputs.fillMask = &*mask;
        inputs.weightMap = &*weight;
        inputs.fillAll = !weighs;
        inputs.avoidFillRegion = avoids;
        inputs.seed = settings.seed;
        inputs.blocks = blocks;
        ::testing::internal::CaptureStderr();
        const QuiltResult result = Quilt<Pixel>(inputs).run();
        const std::string said = ::testing::internal::GetCapturedStderr();

        auto plainSource = referenceOf(source);
        auto plainWeight = referenceOf(weight), plainMask = referenceOf(mask);
        Reference::Known<Pixel> known;
        if (weighs) known.source = &plainSource, known.weight = &plainWeight;
        if (avoids) known.fillMask = &plainMask;
        std::vector<Reference::Image<Pixel>*> plainTextures;
        for (auto& texture : plain) plainTextures.push_back(&texture);
        Reference::Quilt<Pixel> quilt(settings, plainTextures, known);
        auto expected = quilt.cover(5, 4, 41, 33);
        maxAttempts = quilt.maxAttempts;
        gaveUp = quilt.gaveUp;
        EXPECT_EQ(result.gaveUpAvoiding, gaveUp);
        EXPECT_EQ(said, gaveUp ? "Cannot avoid matte!\n" : "");
        for (int y = 4; y < 37; ++y) {
            for (int x = 5; x < 46; ++x) {
                ASSERT_EQ(target.at(x, y), expected.at(x, y)) << x << ' ' << y;
            }
        }
    }

    Reference::Settings settings{.blockW = 12,
                                 .blockH = 10,
                                 .overlapW = 5,
                                 .overlapH = 4,
                                 .numSamples = 20,
                                 .boxX0 = 1,
                                 .boxY0 = 2,
                                 .boxX1 = 47,
                                 .boxY1 = 39};
    TestMap<Pixel> maps[3] = {patches<Pixel>(50, 40, 30), patches<Pixel>(44, 38, 31, 6, 2),
                              patches<Pixel>(60, 41, 32, -8, -1)};
    TestMap<Pixel> source = patches<Pixel>(50, 40, 33), target = solid<Pixel>(50, 40, 0.0f);
    TestMap<Pixel32f> weight{50, 40}, mask{50, 40};
    int maxAttempts = 0;
    bool gaveUp = false;
};

template <typename Pixel>
class GuidedQuilts : public ::testing::Test {};
using Depths = ::testing::Types<PixelRGBA8, PixelRGBA16, PixelRGBAf>;
TYPED_TEST_SUITE(GuidedQuilts, Depths);

TYPED_TEST(GuidedQuilts, AgreeWithTheReference)
{
    GuidedQuilt<TypeParam> quilt;
    for (const int textures : {1, 3}) {
        for (const int blend : {0, 2}) {
            for (const int threads : {1, 3}) {
                quilt.settings.threads = threads;
                quilt.settings.blendW = quilt.settings.blendH = blend;
                ++quilt.settings.seed;
                quilt.expectReference(textures, true, false);
                quilt.expectReference(textures, false, true);
                quilt.expectReference(textures, true, true);
                EXPECT_FALSE(quilt.gaveUp);
            }
        }
    }
}

/// One candidate then takes hundreds of draws, whose number affects all later ones.
TYPED_TEST(GuidedQuilts, AgreeWithTheReferenceWhereFewPositionsAreClear)
{
    GuidedQuilt<TypeParam> quilt;
    quilt.settings.numSamples = 2;
    quilt.leaveClear(14, 13);
    for (quilt.settings.seed = 1; quilt.maxAttempts < 700; ++quilt.settings.seed) {
        quilt.expectReference(1, true, true);
    }
    EXPECT_FALSE(quilt.gaveUp);
    quilt.leaveClear(13, 11);
    for (quilt.settings.seed = 1; !quilt.gaveUp; ++quilt.settings.seed) {
        quilt.expectReference(1, true, true);
    }
}

}  // namespace
}  // namespace Orvane::Engine
