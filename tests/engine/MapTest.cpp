#include <limits>
#include <optional>

#include <gmock/gmock.h>

#include "engine/map/Map.h"
#include "engine/map/MapRow.h"
#include "tests/fixtures/FakeServices.h"
#include "tests/fixtures/MapBuilder.h"

namespace Orvane::Engine {
namespace {

using Testing::FakeServices;
using Testing::TestMap;

MapAxis axisOf(int size, EdgeMode mode)
{
    MapAxis axis;
    axis.init(size, mode);
    return axis;
}

TEST(MapAxis, ReadsOutsideByTheEdgeMode)
{
    struct Case {
        EdgeMode mode;
        int size, p;
        std::optional<int> index;
    };
    const auto none = std::nullopt;
    using enum EdgeMode;
    const Case cases[] = {
        {EdgeNone, 4, -1, none}, {EdgeNone, 4, 4, none},  {EdgeNone, 4, 3, 3},
        {EdgeClamp, 4, -9, 0},   {EdgeClamp, 4, 4, 3},    {EdgeMirror, 4, -1, 0},
        {EdgeMirror, 4, -4, 3},  {EdgeMirror, 4, -5, 3},  {EdgeMirror, 4, -6, 2},
        {EdgeMirror, 4, -8, 0},  {EdgeMirror, 4, -9, 0},  {EdgeMirror, 4, 4, 3},
        {EdgeMirror, 4, 7, 0},   {EdgeMirror, 4, 8, 0},   {EdgeMirror, 4, 9, 1},
        {EdgeMirror, 1, 17, 0},  {EdgeMirror, 1, -17, 0}, {EdgeWrap, 4, -1, 3},
        {EdgeWrap, 4, -2, 2},    {EdgeWrap, 4, -4, 0},    {EdgeWrap, 4, -5, 3},
        {EdgeWrap, 4, 4, 0},     {EdgeWrap, 4, 9, 1},     {EdgeFree, 4, -1, none},
        {EdgeFree, 4, 5, none},  {EdgeFree, 4, 2, 2},     {EdgeMirror, 0, 0, none},
        {EdgeWrap, 0, -3, none}, {EdgeClamp, 0, 5, none},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(axisOf(c.size, c.mode).resolve(c.p), c.index)
            << "mode " << static_cast<int>(c.mode) << " size " << c.size << " p " << c.p;
    }
    for (const auto mode : {EdgeClamp, EdgeMirror, EdgeWrap}) {
        const MapAxis axis = axisOf(7, mode);
        for (const int p : {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
            ASSERT_TRUE(axis.resolve(p));
            EXPECT_LT(*axis.resolve(p), 7);
        }
    }
}

TEST(MapAxis, ActiveRangeMovesTheEdges)
{
    MapAxis axis = axisOf(10, EdgeMode::EdgeMirror);
    axis.setActiveRange(7, 3);  // ends in any order: 3..7
    EXPECT_EQ(axis.resolve(2), 3);
    EXPECT_EQ(axis.resolve(8), 7);
    axis.edgeMode = EdgeMode::EdgeWrap;
    EXPECT_EQ(axis.resolve(2), 7);
    axis.setOffset(100);
    EXPECT_EQ(axis.resolve(105), 5);
    axis.setOffset(-2.5f);
    EXPECT_EQ(axis.offset, -2);
    axis.setActiveRange(-5, 99);
    EXPECT_EQ(axis.activeLength, 10);
}

TEST(MapAxis, StoredRangeIsClampedToTheAxisAndFlagged)
{
    MapAxis axis = axisOf(8, EdgeMode::EdgeMirror);
    axis.setStoredRange(0, 8);
    EXPECT_FALSE(axis.storesPart());
    axis.setStoredRange(2, 5);
    EXPECT_TRUE(axis.storesPart());
    EXPECT_EQ(axis.resolve(2), 0);
    EXPECT_EQ(axis.resolve(1), std::nullopt);
    EXPECT_EQ(axis.resolve(-3), 0) << "reflected to 2";
    EXPECT_EQ(axis.translate(5), 3);
    EXPECT_EQ(axis.translate(6), std::nullopt);
    axis.setClipToStored(true);
    EXPECT_EQ(axis.activeStart, 2);
    EXPECT_EQ(axis.resolve(1), 0);
    axis.setActiveRange(0, 7);
    EXPECT_EQ(axis.activeLength, 4);
    axis.resetStoredRange();
    EXPECT_FALSE(axis.storesPart());
}

TEST(Map, StorageComesFromTheHostAndGoesBack)
{
    FakeServices services;
    {
        Map<PixelRGBA16> map;
        map.setSize(5, 3);
        map.setStoredRange(1, 3, 0, 2);
        map.allocate();
        ASSERT_TRUE(map.isUsable());
        EXPECT_EQ(map.stride(), 3 * 8);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(map.firstPixel()) % 16, 0u);
        EXPECT_EQ(services.memory.live.size(), 1u);
        Map<PixelRGBA16> moved = std::move(map);
        EXPECT_TRUE(moved.ownsData());
        map.allocate();  // NOLINT(bugprone-use-after-move): a moved map is an empty one
        EXPECT_FALSE(map.allocFailed());
        EXPECT_EQ(map.firstPixel(), nullptr);
        moved.allocate();
        EXPECT_EQ(services.memory.live.size(), 1u);
        moved.release();
        EXPECT_EQ(moved.width(), 0);
        EXPECT_TRUE(services.memory.live.empty());
        moved.setSize(2, 2);
        moved.allocate();
    }
    EXPECT_TRUE(services.memory.live.empty());
    EXPECT_EQ(services.memory.freedLocked, 0);
}

TEST(Map, AFailedAllocationLeavesNothingBehind)
{
    FakeServices services;
    Map<Pixel32f> map;
    map.setSize(4, 4);
    map.setFillValue(7.0f);
    services.memory.failLock = 1;
    map.allocate();
    EXPECT_TRUE(map.allocFailed());
    EXPECT_TRUE(services.memory.live.empty());
    services.memory.failAllocation = 1;
    map.allocate();
    EXPECT_TRUE(map.allocFailed());
    EXPECT_FALSE(map.isUsable());
    EXPECT_EQ(map.read(1, 1), 7.0f);
    EXPECT_EQ(RowReader(map, 1)[2], 7.0f);
    map.allocate();
    EXPECT_FALSE(map.allocFailed());
    map.setSize(2000000000, 2000000000);
    map.allocate();
    EXPECT_TRUE(map.allocFailed());
}

TEST(Map, AssignMakesAView)
{
    FakeServices services;
    auto image = Testing::noise<PixelRGBA8>(6, 4, 1, 10, 20);
    image->setFillValue({1, 2, 3, 4});
    Map<PixelRGBA8> view;
    view.setSize(3, 3);
    view.allocate();
    view.assign(*image);
    EXPECT_TRUE(services.memory.live.empty());
    EXPECT_FALSE(view.ownsData());
    EXPECT_EQ(view.read(12, 21), image.at(2, 1));
    EXPECT_EQ(view.read(9, 21), (PixelRGBA8{1, 2, 3, 4}));
    view.setEdgeMode(EdgeMode::EdgeClamp, EdgeMode::EdgeClamp);
    EXPECT_EQ(view.read(9, 99), image.at(0, 3));
    EXPECT_EQ(image->xAxis().edgeMode, EdgeMode::EdgeNone);
    view.assign(view);
    EXPECT_EQ(view.read(12, 21), image.at(2, 1));
}

TEST(Map, ReadsRowsStoredTopDown)
{
    std::vector<Pixel32f> memory{4, 5, -1, 2, 3, -1, 0, 1, -1};  // padded rows, the lowest last
    Map<Pixel32f> map;
    map.setSize(2, 3);
    map.borrow(&memory[6], -3 * static_cast<std::ptrdiff_t>(sizeof(float)));
    for (int y = 0; y < 3; ++y) {
        const RowReader row(map, y);
        for (int x = 0; x < 2; ++x) {
            EXPECT_EQ(map.read(x, y), static_cast<float>(2 * y + x));
            EXPECT_EQ(row[x], static_cast<float>(2 * y + x));
        }
    }
    *map.translate(1, 2) = 9.0f;
    EXPECT_EQ(memory[1], 9.0f);
    EXPECT_EQ(map.translate(2, 2), nullptr);
}

TEST(Map, RowsAgreeWithSinglePixelsEverywhere)
{
    auto image = Testing::noise<PixelRGBA8>(9, 5, 3, -4, 7);
    image->setStoredRange(2, 6, 1, 3);
    image->borrow(&image.at(2, 1), 9 * 4);
    for (const auto mode : {EdgeMode::EdgeNone, EdgeMode::EdgeClamp, EdgeMode::EdgeMirror,
                            EdgeMode::EdgeWrap, EdgeMode::EdgeFree}) {
        image->setEdgeMode(mode, mode);
        for (int y = -10; y < 30; ++y) {
            const RowReader row(*image, y);
            for (int x = -30; x < 30; ++x) ASSERT_EQ(row[x], image->read(x, y)) << x << ' ' << y;
        }
    }
    const RowReader row(*image, 9);
    EXPECT_NE(row.span(-2, 5), nullptr);
    EXPECT_EQ(row.span(-2, 6), nullptr);
    EXPECT_EQ(row.span(-3, 2), nullptr);
}

TEST(Map, SamplesBilinearly)
{
    TestMap<Pixel32f> map(2, 2);
    map.pixels() = {0, 8, 16, 32};
    map->setFillValue(100.0f);
    EXPECT_EQ(map->sampleBox(0, 0, 1, 1), 0.0f) << "the centre of the first pixel";
    EXPECT_EQ(map->sampleBox(0, 0, 2, 2), 14.0f) << "the middle of all four";
    EXPECT_EQ(map->sampleAround(1.0f, 0.5f, 3.0f, 0.25f), 4.0f);
    EXPECT_EQ(map->sampleBox(-1, 0, 1, 1), 50.0f) << "half outside";
    EXPECT_EQ(map->sampleBox(50, 0, 51, 1), 100.0f);
    map->setOffset(10.0f, 0.25f);
    EXPECT_EQ(map->sampleBox(10, 0.25f, 12, 2.25f), 14.0f);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(map->sampleBox(nan, 0, nan, 0) != map->sampleBox(nan, 0, nan, 0)) << "no fault";

    TestMap<PixelRGBA8> colour(2, 1);
    colour.pixels() = {{0, 10, 20, 30}, {1, 20, 40, 255}};
    colour->setEdgeMode(EdgeMode::EdgeClamp, EdgeMode::EdgeClamp);
    EXPECT_EQ(colour->sampleBox(0, 0, 2, 1), (PixelRGBAf{0.5f, 15.0f, 30.0f, 142.5f}));
}

}  // namespace
}  // namespace Orvane::Engine
