#include <limits>

#include <gmock/gmock.h>

#include "engine/filter/BandNodes.h"
#include "engine/filter/FillAndCopy.h"
#include "engine/filter/LumaOf.h"
#include "tests/fixtures/FakeServices.h"
#include "tests/fixtures/MapBuilder.h"

namespace Orvane::Engine {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using Testing::FakeServices;
using Testing::TestMap;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

TEST(MaskGradient, TakesForwardDifferencesAndTheFillValueOutside)
{
    const FakeServices services(3);
    TestMap<Pixel32f> mask(3, 2, 10, 20);
    mask.pixels() = {1, 4, 9,  //
                     5, 5, 2};
    mask->setFillValue(100.0f);
    TestMap<PixelVec2f> gradient(3, 2, 10, 20);
    MaskGradient node;
    node.process(*mask, *gradient);
    using V = PixelVec2f;
    EXPECT_THAT(gradient.pixels(), ElementsAre(V{3, 4}, V{5, 1}, V{91, -7},  //
                                               V{0, 95}, V{-3, 95}, V{98, 98}));
    mask->setEdgeMode(EdgeMode::EdgeClamp, EdgeMode::EdgeClamp);
    node.process(*mask, *gradient);
    EXPECT_EQ(gradient.at(2, 1), (V{0, 0}));
}

TEST(BandCut, KeepsWhatIsStrongEnoughOutsideTheFillRegion)
{
    const FakeServices services(2);
    struct Case {
        float maximum, weakest, tooWeak;
    };
    const Case cases[] = {
        {255.0f, 1.0f, 0.999f}, {65535.0f, 257.0f, 256.99f}, {1.0f, 0.003921569f, 0.00392155f}};
    for (const Case& c : cases) {
        TestMap<Pixel32f> mask(10, 1), band(10, 1);
        mask.pixels() = {0, 0, 0, -0.0f, 1e-30f, -1, c.maximum, kNan, 0, 0};
        band.pixels() = {c.weakest, c.tooWeak, c.maximum, c.maximum, c.maximum,
                         c.maximum, c.maximum, c.maximum, kNan,      -c.maximum};
        BandCut cut(c.maximum);
        cut.process(*mask, *band);
        EXPECT_THAT(band.pixels(),
                    ElementsAre(c.weakest, 0, c.maximum, c.maximum, 0, 0, 0, 0, 0, 0));
    }
}

template <typename Pixel>
class WorkMapNodes : public ::testing::Test {};
using WorkPixels = ::testing::Types<Pixel32f, Pixel32i>;
TYPED_TEST_SUITE(WorkMapNodes, WorkPixels);

TYPED_TEST(WorkMapNodes, CopyReadsTheFillValueOutside)
{
    const FakeServices services(7);
    TestMap<TypeParam> input(2, 2, 1, 1), output(4, 3);
    input.pixels() = {1, 2, 3, 4};
    input->setFillValue(-9);
    MapCopy<TypeParam> copy;
    copy.process(*input, *output);
    EXPECT_THAT(output.pixels(), ElementsAre(-9, -9, -9, -9,  //
                                             -9, 1, 2, -9,    //
                                             -9, 3, 4, -9));
    Map<TypeParam> empty;
    empty.setFillValue(5);
    copy.setRegion(0, 0, 1, 2);
    copy.process(empty, *output);
    EXPECT_THAT(output.pixels(), ElementsAre(5, 5, -9, -9, 5, 5, 2, -9, 5, 5, 4, -9));
}

TEST(ConstantFill, FillsPairsAndLabels)
{
    const FakeServices services(3);
    TestMap<PixelVec2f> pairs(2, 2);
    for (const PixelVec2f pair : {PixelVec2f{8, 8}, PixelVec2f{0, 0}}) {
        ConstantFill<PixelVec2f> fill(pair);
        fill.process(&*pairs);
        EXPECT_THAT(pairs.pixels(), Each(pair));
    }
    TestMap<Pixel32i> labels(5, 4);
    ConstantFill<Pixel32i> fill(std::numeric_limits<Pixel32i>::max());
    fill.process(&*labels);
    EXPECT_THAT(labels.pixels(), Each(2147483647));
}

TEST(LumaOf, IsTheMeanOfRedGreenAndBlue)
{
    const FakeServices services;
    TestMap<PixelRGBA8> bytes(2, 1);
    bytes.pixels() = {{1, 2, 5, 200}, {255, 255, 255, 0}};
    TestMap<PixelRGBA16> shorts(2, 1);
    shorts.pixels() = {{65535, 65535, 65533, 0}, {0, 0, 2, 65535}};
    TestMap<PixelRGBAf> floats(2, 1);
    floats.pixels() = {{0.1f, 0.2f, 0.7f, 9.0f}, {-3.0f, 0.0f, 1.5f, 0.0f}};
    std::vector<float> luma(3);
    readLuma(*bytes, 0, 0, 3, luma.data());
    EXPECT_THAT(luma, ElementsAre(2, 255, 0)) << "integers; nothing outside";
    readLuma(*shorts, 0, 0, 3, luma.data());
    EXPECT_THAT(luma, ElementsAre(65534, 0, 0));
    floats->setEdgeMode(EdgeMode::EdgeMirror, EdgeMode::EdgeMirror);
    readLuma(*floats, 1, 0, 3, luma.data());
    EXPECT_THAT(luma, ElementsAre((0.1f + 0.2f + 0.7f) / 3.0f, -0.5f, -0.5f));
    luma.assign(150, 0.0f);
    readLuma(*bytes, 0, -70, 80, luma.data());
    for (int x = -70; x < 80; ++x) {
        EXPECT_EQ(luma[static_cast<std::size_t>(x + 70)], x == 0 ? 2 : x == 1 ? 255 : 0) << x;
    }
}

}  // namespace
}  // namespace Orvane::Engine
