#include <gmock/gmock.h>

#include "engine/filter/FillAndCopy.h"
#include "engine/pass/MapProcessor.h"
#include "tests/fixtures/FakeServices.h"
#include "tests/fixtures/MapBuilder.h"

namespace Orvane::Engine {
namespace {

using Testing::FakeServices;
using Testing::TestMap;
using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

void expectRegion(const MapProcessor& node, const Region& expected)
{
    const Region& r = node.region();
    EXPECT_TRUE(r.x0 == expected.x0 && r.y0 == expected.y0 && r.x1 == expected.x1 &&
                r.y1 == expected.y1)
        << r.x0 << ' ' << r.y0 << ' ' << r.x1 << ' ' << r.y1;
}

TEST(MapProcessor, ClampsItsRegionToTheMap)
{
    TestMap<Pixel32f> map(6, 4, 10, 20);
    ConstantFill<Pixel32f> node(1.0f);
    node.process(&*map);
    expectRegion(node, {10, 20, 16, 24});
    EXPECT_FALSE(node.hasExplicitRegion());

    struct Case {
        Region set, used;
    };
    const Case cases[] = {{{0, 0, 100, 100}, {10, 20, 16, 24}},
                          {{12, 21, 14, 23}, {12, 21, 14, 23}},
                          {{-9, -9, 12, 22}, {10, 20, 12, 22}},
                          {{50, 50, 60, 60}, {15, 23, 16, 24}},
                          {{-60, -60, -50, -50}, {10, 20, 11, 21}}};
    for (const Case& c : cases) {
        node.setRegion(c.set);
        node.process(&*map);
        expectRegion(node, c.used);
        EXPECT_TRUE(node.hasExplicitRegion());
    }
    // Only a region that covers a whole map at the origin follows the next map.
    TestMap<Pixel32f> small(3, 3), large(5, 5);
    node.setRegion(0, 0, 9, 9);
    node.process(&*small);
    EXPECT_FALSE(node.hasExplicitRegion());
    node.process(&*large);
    expectRegion(node, {0, 0, 5, 5});
    EXPECT_EQ(large.at(4, 4), 1.0f);
}

TEST(MapProcessor, SkipsAndReportsUnusableMaps)
{
    FakeServices services;
    Map<PixelRGBA8> empty, noWidth, noStorage;
    noWidth.setSize(0, 4);
    noStorage.setSize(4, 4);
    const auto image = Testing::solid<PixelRGBA8>(2, 2, 1.0f);
    ConstantFill<PixelRGBA8> generator({1, 2, 3, 4});
    RowCopy<PixelRGBA8> sampler;

    CaptureStderr();
    generator.process(nullptr);
    generator.process(&noWidth);
    generator.process(&noStorage);
    sampler.process(&*image, nullptr);
    sampler.process(&*image, &empty);
    EXPECT_EQ(GetCapturedStderr(),
              "Map passed into Generator::process is NULL\n"
              "Map passed into Generator::process is bogus\n"
              "Map passed into Generator::process is bogus\n"
              "Map passed into Sampler::process is bogus\n");

    auto target = Testing::solid<PixelRGBA8>(2, 2, 0.0f);
    sampler.process(&noStorage, &*target);
    sampler.process(nullptr, &*target);
    EXPECT_EQ(target.at(0, 0), Testing::grey<PixelRGBA8>(0.0f)) << "nothing to copy";
    EXPECT_EQ(services.threads.calls, 2);
}

TEST(RowCopy, CopiesThroughTheEdgeModes)
{
    const FakeServices services(3);
    auto image = Testing::noise<PixelRGBA16>(5, 4, 2);
    image->setEdgeMode(EdgeMode::EdgeMirror, EdgeMode::EdgeMirror);
    TestMap<PixelRGBA16> target(12, 9, -3, -2);
    RowCopy<PixelRGBA16> copy;
    copy.process(&*image, &*target);
    for (int y = -2; y < 7; ++y) {
        for (int x = -3; x < 9; ++x) ASSERT_EQ(target->read(x, y), image->read(x, y));
    }
}

}  // namespace
}  // namespace Orvane::Engine
