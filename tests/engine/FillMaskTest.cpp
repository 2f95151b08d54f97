#include <algorithm>
#include <array>
#include <random>
#include <string>

#include <gmock/gmock.h>

#include "engine/map/Random.h"
#include "engine/mask/FillMask.h"
#include "tests/fixtures/FakeServices.h"
#include "tests/fixtures/MapBuilder.h"

namespace Orvane::Engine {
namespace {

using Testing::FakeServices;
using Testing::TestMap;
using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

/// A prepared mask as rows of text: '#' is M, '.' is 0, anything else is neither.
using Rows = std::vector<std::string>;

template <typename MaskPixel>
Rows rowsOf(const Map<Pixel32f>& map)
{
    Rows rows;
    const Region extent = map.extent();
    for (int y = extent.y0; y < extent.y1; ++y) {
        rows.emplace_back();
        for (int x = extent.x0; x < extent.x1; ++x) {
            const float v = map.read(x, y);
            rows.back() += v == MaskTraits<MaskPixel>::kMax ? '#' : v == 0.0f ? '.' : '?';
        }
    }
    return rows;
}

/// The smallest value that is masked, and the largest that is not.
template <typename MaskPixel>
constexpr std::array<MaskPixel, 2> kThreshold{1, 0};
template <>
constexpr std::array<Pixel16, 2> kThreshold<Pixel16>{257, 256};
template <>
constexpr std::array<Pixel32f, 2> kThreshold<Pixel32f>{0.003922f, 0.003921f};

/// '#' is M, '+' barely masked, '-' barely not, '.' 0.
template <typename MaskPixel>
TestMap<MaskPixel> maskOf(const Rows& rows, int x = 0, int y = 0)
{
    TestMap<MaskPixel> mask(static_cast<int>(rows[0].size()), static_cast<int>(rows.size()), x, y);
    auto pixel = mask.pixels().begin();
    for (const std::string& row : rows) {
        for (const char c : row) {
            const auto [masked, unmasked] = kThreshold<MaskPixel>;
            *pixel++ = c == '#'   ? static_cast<MaskPixel>(MaskTraits<MaskPixel>::kMax)
                       : c == '+' ? masked
                       : c == '-' ? unmasked
                                  : MaskPixel{0};
        }
    }
    return mask;
}

/// Turns the area of equal letters around a point into `to`, by recursion. What lies left of or
/// below 0 wraps around to far outside.
void flood(Rows& rows, std::size_t x, std::size_t y, char from, char to)
{
    if (y >= rows.size() || x >= rows[y].size() || rows[y][x] != from) return;
    rows[y][x] = to;
    flood(rows, x + 1, y, from, to);
    flood(rows, x - 1, y, from, to);
    flood(rows, x, y + 1, from, to);
    flood(rows, x, y - 1, from, to);
}

/// The prepared mask of '#' on '.', which has its border already.
Rows reference(Rows rows, int seed)
{
    Random random(static_cast<std::uint32_t>(seed));
    std::size_t x = 0, y = 0;
    do {
        x = static_cast<std::size_t>(drawBelow(random, static_cast<int>(rows[0].size())));
        y = static_cast<std::size_t>(drawBelow(random, static_cast<int>(rows.size())));
    } while (rows[y][x] != '.');
    flood(rows, x, y, '.', 'o');
    for (std::string& row : rows) std::replace(row.begin(), row.end(), '.', '#');
    for (y = 0; y < rows.size(); ++y) {
        x = rows[y].find('#');
        if (x == std::string::npos) continue;
        flood(rows, x, y, '#', '1');
        break;
    }
    for (std::string& row : rows) {
        for (char& c : row) c = c == '1' ? '#' : '.';
    }
    return rows;
}

template <typename MaskPixel>
class FillMask : public ::testing::Test {};
using MaskKinds = ::testing::Types<Pixel8, Pixel16, Pixel32f>;
TYPED_TEST_SUITE(FillMask, MaskKinds);

TYPED_TEST(FillMask, KeepsTheFirstAreaWithItsHolesAndSoftEdges)
{
    const FakeServices services(2);
    struct Case {
        Rows mask, prepared;
    };
    const Case cases[] = {
        {{"....", "...."}, {"......", "......", "......", "......"}},
        {{"-"}, {"...", "...", "..."}},
        {{"+"}, {"...", ".#.", "..."}},
        {{"##", "##"}, {"....", ".##.", ".##.", "...."}},
        {{"..##.", "-+##+", "#...-"}, {".......", "...##..", "..####.", ".......", "......."}},
        // Corner to corner is not connected.
        {{"#.", ".#"}, {"....", ".#..", "....", "...."}}};
    for (const Case& c : cases) {
        for (const int seed : {1, 77, -3}) {
            auto mask = maskOf<TypeParam>(c.mask);
            const auto prepared = prepareFillMask(*mask, seed, nullptr);
            ASSERT_TRUE(prepared.has_value());
            EXPECT_EQ(rowsOf<TypeParam>(*prepared), c.prepared);
            EXPECT_EQ(prepared->fillValue(), 0.0f);
        }
    }
}

TYPED_TEST(FillMask, AgreesWithThePlainVersionForEveryThreadCount)
{
    std::mt19937 random(5);
    int startsInHole = 0;
    for (int round = 0; round < 160; ++round) {
        const FakeServices services(
            std::array{1u, 2u, 4u, 7u}[static_cast<std::size_t>(round % 4)]);
        Rows inner = {"####", "#..#", "####"};  // its hole is filled, or all but its hole
        if (round >= 80) {
            const auto height = 1 + random() % 12, width = 1 + random() % 17,
                       density = random() % 5;
            inner.assign(height, std::string(width, '.'));
            for (std::string& row : inner) {
                for (char& c : row) c = random() % 4 < density ? '#' : '.';
            }
        }
        Rows padded(inner.size() + 2, std::string(inner[0].size() + 2, '.'));
        for (std::size_t y = 0; y < inner.size(); ++y)
            padded[y + 1].replace(1, inner[0].size(), inner[y]);

        auto mask = maskOf<TypeParam>(inner, -30, 1 - round);
        mask->setEdgeMode(EdgeMode::EdgeMirror, EdgeMode::EdgeWrap);  // is not read through
        const auto prepared = prepareFillMask(*mask, round, nullptr);
        ASSERT_TRUE(prepared.has_value());
        const Rows result = rowsOf<TypeParam>(*prepared);
        EXPECT_EQ(result, reference(padded, round)) << round;
        if (round < 80 && result[0][0] == '#') ++startsInHole;
        EXPECT_EQ(prepared->xAxis().offset, -31);
        EXPECT_EQ(prepared->xAxis().origin, -31);
        EXPECT_EQ(prepared->yAxis().offset, -round);
        EXPECT_EQ(prepared->yAxis().origin, -round);
    }
    EXPECT_TRUE(startsInHole > 0 && startsInHole < 40) << startsInHole;
}

TYPED_TEST(FillMask, ReadsTheFillValueWhereAViewHasNoPixels)
{
    const FakeServices services;
    auto pixels = maskOf<TypeParam>({"##", "##"});
    Map<TypeParam> mask;
    mask.setSize(5, 4);
    mask.placeAt(-2, 7);
    mask.setStoredRange(1, 2, 1, 2);
    mask.borrow(pixels.pixels().data(), 2 * sizeof(TypeParam));
    const Rows region = {".......", ".......", "..##...", "..##...", ".......", "......."};
    EXPECT_EQ(rowsOf<TypeParam>(*prepareFillMask(mask, 1, nullptr)), region);

    // Masked all over, border included: nothing to start from, so everything given is filled.
    mask.setFillValue(static_cast<TypeParam>(MaskTraits<TypeParam>::kMax));
    EXPECT_EQ(rowsOf<TypeParam>(*prepareFillMask(mask, 1, nullptr)), region);

    // One unmasked pixel to start from: all the rest is one area, border included.
    pixels.at(1, 0) = TypeParam{0};
    const Rows rest = {"#######", "#######", "###.###", "#######", "#######", "#######"};
    EXPECT_EQ(rowsOf<TypeParam>(*prepareFillMask(mask, 1, nullptr)), rest);
}

TYPED_TEST(FillMask, TakesTheFirstUnmaskedPixelWhenNoDrawCanHitOne)
{
    const FakeServices services;
    // 32768 different numbers cannot draw each of 70002 columns: the second is never drawn.
    TestMap<TypeParam> mask(70000, 1);
    const auto maximum = static_cast<TypeParam>(MaskTraits<TypeParam>::kMax);
    mask.pixels().assign(70000, maximum);
    mask->setFillValue(maximum);
    mask.at(0, 0) = TypeParam{0};
    Rows expected(3, std::string(70002, '#'));
    expected[1][1] = '.';
    EXPECT_TRUE(rowsOf<TypeParam>(*prepareFillMask(*mask, 4, nullptr)) == expected);
}

TEST(FillMaskFailure, YieldsNothingWhenAbortedAtAnyPoll)
{
    FakeServices services(2);
    for (const Pixel8 fillValue : {Pixel8{0}, Pixel8{255}}) {
        int polls = 0;
        for (bool finished = false; !finished; ++polls) {
            auto mask = maskOf<Pixel8>({"###", "###"});
            mask->setFillValue(fillValue);
            int left = polls;
            RenderStatus status{.abortHandle = &left};
            status.poll = [](void* count, int*) { return --*static_cast<int*>(count) < 0 ? 1 : 0; };
            finished = prepareFillMask(*mask, 1, &status).has_value();
            EXPECT_NE(finished, status.aborted != 0);
        }
        EXPECT_GT(polls, 8);
    }
    EXPECT_TRUE(services.memory.live.empty());
}

TEST(FillMaskFailure, ComesToAnEndWhereTheHostRunsNoThreads)
{
    const FakeServices services(2, Testing::FakeThreads::Mode::Refuse);
    auto mask = maskOf<Pixel8>({"###", "#.#"});
    // The padded mask was never written: memory without an unmasked pixel, whatever is drawn.
    EXPECT_TRUE(prepareFillMask(*mask, 1, nullptr).has_value());
}

TEST(FillMaskFailure, FillsNothingWithoutMemory)
{
    FakeServices services(2);
    for (const bool locking : {false, true}) {
        for (int failing = 1; failing <= 3; ++failing) {
            auto mask = maskOf<Pixel16>({"####", "#..#", "####"});
            (locking ? services.memory.failLock : services.memory.failAllocation) = failing;
            CaptureStderr();
            const auto prepared = prepareFillMask(*mask, 1, nullptr);
            EXPECT_NE(GetCapturedStderr(), "");
            ASSERT_TRUE(prepared.has_value());
            for (int y = -1; y < 4; ++y) {
                for (int x = -1; x < 5; ++x) EXPECT_EQ(prepared->read(x, y), 0.0f);
            }
        }
    }
    EXPECT_TRUE(services.memory.live.empty());
}

}  // namespace
}  // namespace Orvane::Engine
