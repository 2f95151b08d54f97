#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>

#include <gmock/gmock.h>

#include "engine/filter/LuminanceMatch.h"
#include "tests/fixtures/FakeServices.h"
#include "tests/fixtures/MapBuilder.h"

namespace Orvane::Engine {
namespace {

using ::testing::AnyOf;
using ::testing::Each;
using Testing::FakeServices;
using Testing::grey;
using Testing::solid;
using Testing::TestMap;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kUntouched = 1.0f;

TestMap<Pixel32f> floats(int width, int height, float value, int x = 0, int y = 0)
{
    TestMap<Pixel32f> map(width, height, x, y);
    map.pixels().assign(map.pixels().size(), value);
    return map;
}

/// One match over images of the same size.
template <typename Pixel>
struct Match {
    Match(TestMap<Pixel> from, TestMap<Pixel> to)
        : source(std::move(from)),
          destination(std::move(to)),
          band(floats(source->width(), source->height(), 0.0f, source->xAxis().origin,
                      source->yAxis().origin)),
          gain(floats(source->width(), source->height(), kUntouched, source->xAxis().origin,
                      source->yAxis().origin))
    {}

    /// Makes a pixel of the band a measurement.
    void measureAt(int column, int row) { band.at(column, row) = PixelTraits<Pixel>::kMax; }

    const std::vector<float>& run(float blur, int maxPasses = std::numeric_limits<int>::max())
    {
        LuminanceMatch<Pixel> node(*band, *source, *gain);
        node.setLuminanceBlur(blur);
        node.setMaxPasses(maxPasses);
        node.setStatusRecord(status);
        node.process(*destination);
        return gain.pixels();
    }

    TestMap<Pixel> source, destination;
    TestMap<Pixel32f> band, gain;
    RenderStatus* status = nullptr;
};

using Doubles = std::vector<double>;

/// The mean over the box around each pixel, by direct summation; 0 is what lies outside.
Doubles blurred(const Doubles& values, int width, int radius)
{
    const int height = static_cast<int>(values.size()) / width;
    const double norm = 1.0 / ((2.0 * radius + 1) * (2.0 * radius + 1));
    Doubles result;
    for (int i = 0; i < width * height; ++i) {
        double sum = 0.0;
        for (int v = std::max(i / width - radius, 0); v <= i / width + radius && v < height; ++v) {
            const auto row = values.begin() + v * width;
            sum += std::accumulate(row + std::max(i % width - radius, 0),
                                   row + std::min(i % width + radius + 1, width), 0.0);
        }
        result.push_back(sum * norm);
    }
    return result;
}

template <typename Pixel>
Doubles lumaOf(const TestMap<Pixel>& image)
{
    Doubles luma;
    for (const Pixel& p : image.pixels()) {
        constexpr bool kWhole = std::is_integral_v<typename Pixel::Channel>;
        const double mean = (static_cast<double>(p.r) + p.g + p.b) / 3.0;
        luma.push_back(kWhole ? std::floor(mean) : mean);
    }
    return blurred(luma, image->width(), 5);
}

template <typename Pixel>
Doubles reference(const Match<Pixel>& match, int blur)
{
    const int width = match.source->width();
    const Doubles source = lumaOf(match.source), destination = lumaOf(match.destination);
    Doubles ratio(source.size()), known(source.size()), before(source.size());
    Doubles gain(source.size(), kUntouched);
    for (std::size_t i = 0; i < gain.size(); ++i) {
        if (match.band.pixels()[i] <= 0.01f * PixelTraits<Pixel>::kMax) continue;
        known[i] = 1.0;
        ratio[i] = source[i] / destination[i];
    }
    const int k = 1 + blur / 2;
    const double threshold = 1.0 / (k * k);
    for (bool finished = false; !finished; before = known) {
        const Doubles support = blurred(known, width, blur / 2);
        known = blurred(known, width, blur);
        ratio = blurred(ratio, width, blur);
        finished = true;
        for (std::size_t i = 0; i < gain.size(); ++i) {
            const bool isKnown = support[i] >= threshold;
            ratio[i] = isKnown ? ratio[i] / known[i] : 0.0;
            known[i] = isKnown ? 1.0 : 0.0;
            if (isKnown && before[i] == 0.0) gain[i] = ratio[i];
            if (!isKnown) finished = false;
        }
    }
    return gain;
}

template <typename Pixel>
class LuminanceMatchDepths : public ::testing::Test {};
using Depths = ::testing::Types<PixelRGBA8, PixelRGBA16, PixelRGBAf>;
TYPED_TEST_SUITE(LuminanceMatchDepths, Depths);

TYPED_TEST(LuminanceMatchDepths, AgreesWithThePlainVersionForEveryThreadCount)
{
    for (const int blur : {2, 5, 13, 60}) {
        Match<TypeParam> match(Testing::noise<TypeParam>(37, 29, 1, -5, 3),
                               Testing::noise<TypeParam>(37, 29, 2, -5, 3));
        // A ring, of a strength that changes, and a few pixels on their own.
        for (int y = 0; y < 29; ++y) {
            for (int x = 0; x < 37; ++x) {
                const double away = std::hypot(x - 18, y - 14);
                if (away < 9.0 || away > 12.0) continue;
                match.band.at(x, y) = PixelTraits<TypeParam>::kMax * static_cast<float>(x) / 40.0f;
            }
        }
        match.measureAt(0, 0);
        match.measureAt(36, 13);
        match.measureAt(35, 14);
        const Doubles expected = reference(match, blur);
        for (const unsigned int threads : {1u, 2u, 4u, 7u}) {
            const FakeServices services(threads);
            match.gain.pixels().assign(expected.size(), kUntouched);
            const std::vector<float>& gain = match.run(static_cast<float>(blur) + 0.75f);
            for (std::size_t i = 0; i < gain.size(); ++i) {
                ASSERT_NEAR(gain[i], expected[i], 1e-5) << blur << ' ' << i;
            }
        }
    }
}

TYPED_TEST(LuminanceMatchDepths, CarriesOneRatioOverTheWholeRegionUnchanged)
{
    const FakeServices services(3);
    struct Case {
        float source, texture, gain;
    };
    const Case cases[] = {
        {0.8f, 0.4f, 2.0f}, {0.3f, 0.3f, 1.0f}, {0.3f, 0.0f, 1.0f}};  // black stays
    for (const float blur : {2.0f, 40.0f, 500.0f, 1e9f, std::numeric_limits<float>::infinity()}) {
        for (const Case& c : cases) {
            Match<TypeParam> match(solid<TypeParam>(30, 20, c.source),
                                   solid<TypeParam>(30, 20, c.texture));
            match.gain.pixels().assign(600, 7.0f);
            for (int i = 0; i < 8; ++i) match.measureAt(4 + i % 2, 2 + i / 2);
            EXPECT_THAT(match.run(blur), Each(c.gain)) << blur;
        }
    }
}

/// A 7 x 7 match at float depth whose ratio is 2, measured at the given pixels.
struct SmallMatch : Match<PixelRGBAf> {
    explicit SmallMatch(std::initializer_list<std::array<int, 2>> measured)
        : Match(solid<PixelRGBAf>(7, 7, 0.8f), solid<PixelRGBAf>(7, 7, 0.4f))
    {
        for (const auto& [x, y] : measured) measureAt(x, y);
    }
    std::string touched() const
    {
        std::string rows;
        for (std::size_t i = 0; i < gain.pixels().size(); ++i) {
            if (i > 0 && i % 7 == 0) rows += ' ';
            rows += gain.pixels()[i] == 2.0f ? '2' : gain.pixels()[i] == kUntouched ? '.' : '?';
        }
        return rows;
    }
};

TEST(LuminanceMatch, SpreadsToPixelsWithEnoughKnownOnesNear)
{
    const FakeServices services;
    // At a blur of 2 a pixel needs 3 of the 9 around it (3 / 9 is above 1 / 4, 2 / 9 is not).
    const std::initializer_list<std::array<int, 2>> corner = {{2, 2}, {3, 2}, {2, 3}};
    struct Case {
        float blur;
        int maxPasses;
        const char* touched;
    };
    const Case cases[] = {{2.0f, 0, "....... ....... ....... ....... ....... ....... ......."},
                          {2.0f, 1, "....... ....... ..22... ..22... ....... ....... ......."},
                          // At a blur of 5 it needs 3 of 25, here all there are.
                          {5.0f, 1, "....... .2222.. .2222.. .2222.. .2222.. ....... ......."},
                          // No blur at all: what was measured, and no more.
                          {0.0f, 9, "....... ....... ..22... ..2.... ....... ....... ......."},
                          {-4.0f, 9, "....... ....... ..22... ..2.... ....... ....... ......."},
                          {kNaN, 9, "....... ....... ..22... ..2.... ....... ....... ......."}};
    for (const Case& c : cases) {
        SmallMatch match(corner);
        match.run(c.blur, c.maxPasses);
        EXPECT_EQ(match.touched(), c.touched) << c.blur;
    }
}

TEST(LuminanceMatch, MeasuresInTheBandOnly)
{
    const FakeServices services;
    SmallMatch match({});
    match.band.pixels().assign(49, 0.01f);
    EXPECT_THAT(match.run(5.0f), Each(kUntouched)) << "too weak";
    match.band.pixels().assign(49, kNaN);
    EXPECT_THAT(match.run(5.0f), Each(kUntouched));
    match.band.pixels().assign(49, std::nextafter(0.01f, 1.0f));
    EXPECT_THAT(match.run(5.0f), Each(2.0f));
}

TEST(LuminanceMatch, EndsWhereTheSpreadCannot)
{
    const FakeServices services(2);
    SmallMatch nothing({}), lonely({{3, 3}}), block({{3, 3}, {4, 3}, {3, 4}, {4, 4}});
    EXPECT_THAT(nothing.run(40.0f), Each(kUntouched));
    EXPECT_THAT(lonely.run(2.0f), Each(kUntouched));
    block.run(2.0f);
    EXPECT_EQ(block.touched(), "....... ....... ....... ...22.. ...22.. ....... .......");
    // Three in a row become three in a column, and a row again.
    SmallMatch blinker({{2, 3}, {3, 3}, {4, 3}});
    blinker.run(2.0f);
    EXPECT_EQ(blinker.touched(), "....... ....... ...2... ..222.. ...2... ....... .......");
}

TEST(LuminanceMatch, KeepsNanAndInfinityOutOfTheGain)
{
    const FakeServices services(2);
    for (const float bad : {kNaN, std::numeric_limits<float>::infinity()}) {
        Match<PixelRGBAf> match(solid<PixelRGBAf>(40, 20, 0.8f), solid<PixelRGBAf>(40, 20, 0.4f));
        match.source.at(30, 10).g = bad;
        match.band.pixels().assign(800, 1.0f);
        EXPECT_THAT(match.run(6.0f), Each(2.0f)) << "from the pixels around";
        match.source.pixels().assign(800, {bad, bad, bad, 1.0f});
        match.gain.pixels().assign(800, kUntouched);
        EXPECT_THAT(match.run(6.0f), Each(kUntouched));
    }
}

TEST(LuminanceMatch, StaysInsideItsRegionAndTheGainMap)
{
    const FakeServices services(2);
    const auto source = solid<PixelRGBA8>(30, 20, 0.8f),
               destination = solid<PixelRGBA8>(30, 20, 0.4f);
    const auto band = floats(60, 60, 255.0f, -20, -20);
    auto gain = floats(60, 60, kUntouched, -20, -20), small = floats(3, 3, kUntouched, 8, 8);
    LuminanceMatch<PixelRGBA8> node(*band, *source, *gain), inSmall(*band, *source, *small);
    node.setRegion(-20, -20, 9, 39);  // clamped to the destination
    node.process(*destination);
    for (int y = -20; y < 40; ++y) {
        for (int x = -20; x < 40; ++x) {
            const bool inside = x >= 0 && x < 10 && y >= 0 && y < 20;
            ASSERT_EQ(gain->read(x, y), inside ? 2.0f : kUntouched) << x << ' ' << y;
        }
    }
    inSmall.process(*destination);
    EXPECT_THAT(small.pixels(), Each(2.0f));
}

TEST(LuminanceMatch, GivesOnlyThePixelsThatNeedAGainTheSameOnes)
{
    const FakeServices services(2);
    Match<PixelRGBAf> all(Testing::noise<PixelRGBAf>(60, 20, 1),
                          Testing::noise<PixelRGBAf>(60, 20, 2));
    for (int y = 0; y < 20; ++y) all.measureAt(4, y), all.measureAt(5, y);
    const std::vector<float> whole = all.run(5.0f);
    const auto runFor = [&](const Region& part) {
        all.gain.pixels().assign(whole.size(), kUntouched);
        LuminanceMatch<PixelRGBAf> node(*all.band, *all.source, *all.gain);
        node.setLuminanceBlur(5.0f);
        node.setNeeded(part);
        node.process(*all.destination);
        return all.gain.pixels();
    };
    for (const Region& part : {Region{-100, -100, 20, 100}, Region{59, 0, 60, 1},
                               Region{30, 5, 47, 9}, Region{0, 0, 3, 20}}) {
        const std::vector<float> gain = runFor(part);
        for (int i = 0; i < 1200; ++i) {
            const bool needed =
                i % 60 >= part.x0 && i % 60 < part.x1 && i / 60 >= part.y0 && i / 60 < part.y1;
            const auto at = static_cast<std::size_t>(i);
            ASSERT_EQ(gain[at], needed ? whole[at] : kUntouched) << part.x0 << ' ' << i;
        }
    }
}

TEST(LuminanceMatch, EndsAtOnceWhenAbortedAtAnyPoll)
{
    FakeServices services(2, Testing::FakeThreads::Mode::InARow);
    int polls = 0;
    for (bool aborted = true; aborted; ++polls) {
        SmallMatch match({{1, 1}, {2, 1}, {1, 2}});
        int left = polls;
        RenderStatus status{.abortHandle = &left};
        status.poll = [](void* count, int*) { return --*static_cast<int*>(count) < 0 ? 1 : 0; };
        match.status = &status;
        match.run(5.0f);
        aborted = status.aborted != 0;
        EXPECT_THAT(match.gain.pixels(), Each(AnyOf(kUntouched, 2.0f))) << polls;
        EXPECT_TRUE(aborted || match.gain.pixels()[48] == 2.0f);
        EXPECT_TRUE(services.memory.live.empty());
    }
    EXPECT_GT(polls, 20);
}

TEST(LuminanceMatch, ReportsMissingMemory)
{
    FakeServices services(2);
    for (const bool locking : {false, true}) {
        for (int failing = 1; failing <= 6; ++failing) {  // five maps and the blur's own
            SmallMatch match({{1, 1}, {2, 1}, {1, 2}});
            RenderStatus status;
            match.status = &status;
            (locking ? services.memory.failLock : services.memory.failAllocation) = failing;
            EXPECT_THAT(match.run(5.0f), Each(kUntouched));
            EXPECT_EQ(status.aborted, 1);
            EXPECT_EQ(status.errorCode, kErrorOutOfMemory);
            EXPECT_TRUE(services.memory.live.empty());
        }
    }
    services.memory.refuseAll = true;  // and no status record
    SmallMatch match({{1, 1}, {2, 1}, {1, 2}});
    EXPECT_THAT(match.run(5.0f), Each(kUntouched));
}

}  // namespace
}  // namespace Orvane::Engine
