#include <cmath>
#include <limits>
#include <random>

#include <gmock/gmock.h>

#include "engine/filter/BoxBlur.h"
#include "tests/fixtures/FakeServices.h"
#include "tests/fixtures/MapBuilder.h"

namespace Orvane::Engine {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using Testing::FakeServices;
using Testing::TestMap;
using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

using Kernel = std::vector<double>;  // an odd number of weights, the centre in the middle

Kernel convolved(const Kernel& a, const Kernel& b)
{
    Kernel sum(a.size() + b.size() - 1);
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (std::size_t j = 0; j < b.size(); ++j) sum[i + j] += a[i] * b[j];
    }
    return sum;
}

Kernel kernelOf(double radius, BoxBlur::Variant variant)
{
    const double whole = std::floor(radius);
    Kernel box(static_cast<std::size_t>(whole) * 2 + 3, 1.0 / (2.0 * radius + 1.0));
    box.front() *= radius - whole;
    box.back() *= radius - whole;
    return variant == BoxBlur::OneApplication ? box : convolved(convolved(box, box), box);
}

/// The blurred value of one pixel, every weight times every sample.
double direct(const Map<Pixel32f>& input, int x, int y, const Kernel& kx, const Kernel& ky)
{
    double sum = 0.0;
    for (std::size_t j = 0; j < ky.size(); ++j) {
        for (std::size_t i = 0; i < kx.size(); ++i) {
            const int dx = static_cast<int>(i) - static_cast<int>(kx.size() / 2);
            const int dy = static_cast<int>(j) - static_cast<int>(ky.size() / 2);
            sum += kx[i] * ky[j] * static_cast<double>(input.read(x + dx, y + dy));
        }
    }
    return sum;
}

TestMap<Pixel32f> randomMask(int width, int height, std::uint32_t seed, int x = 0, int y = 0)
{
    TestMap<Pixel32f> map(width, height, x, y);
    std::mt19937 random(seed);
    for (float& pixel : map.pixels()) pixel = static_cast<float>(random() % 256);
    return map;
}

TEST(BoxBlur, SpreadsOneSampleByItsWeights)
{
    const FakeServices services;
    TestMap<Pixel32f> input(21, 1), target(21, 1);
    input.at(10, 0) = 1.0f;
    BoxBlur once(BoxBlur::OneApplication);
    once.setRadius(1.5f, 0.0f);
    once.process(*input, *target);
    const std::vector<float>& p = target.pixels();
    EXPECT_THAT(std::vector<float>(p.begin() + 7, p.begin() + 14),
                ElementsAre(0, 0.125f, 0.25f, 0.25f, 0.25f, 0.125f, 0));

    BoxBlur thrice(BoxBlur::ThreeApplications);
    thrice.setRadius(1.5f, 0.0f);
    thrice.process(*input, *target);
    // (1 2 2 2 1) three times with itself, by hand, of 8 * 8 * 8.
    const int expected[] = {1, 6, 18, 38, 63, 84, 92, 84, 63, 38, 18, 6, 1};
    for (int x = 0; x < 21; ++x) {
        const bool reached = x >= 4 && x <= 16;
        EXPECT_EQ(target.at(x, 0), reached ? static_cast<float>(expected[x - 4]) / 512.0f : 0.0f);
    }
}

TEST(BoxBlur, AgreesWithDirectSummationForEveryThreadCount)
{
    struct Case {
        BoxBlur::Variant variant;
        float x, y;
        EdgeMode edge;
    };
    constexpr auto kThree = BoxBlur::ThreeApplications;
    constexpr auto kOne = BoxBlur::OneApplication;
    const Case cases[] = {
        {kThree, 1.0f, 1.0f, EdgeMode::EdgeNone},   {kThree, 2.3f, 0.4f, EdgeMode::EdgeClamp},
        {kThree, 0.0f, 3.5f, EdgeMode::EdgeMirror}, {kThree, 6.25f, 5.0f, EdgeMode::EdgeNone},
        {kThree, 0.01f, 0.0f, EdgeMode::EdgeWrap},  {kOne, 5.0f, 5.0f, EdgeMode::EdgeNone},
        {kOne, 40.5f, 17.0f, EdgeMode::EdgeWrap},   {kOne, 0.75f, 9.0f, EdgeMode::EdgeMirror},
        {kOne, 3.0f, 0.0f, EdgeMode::EdgeFree}};
    for (const Case& c : cases) {
        auto input = randomMask(37, 23, 3, -5, 4);
        input->setEdgeMode(c.edge, c.edge);
        input->setFillValue(17.0f);
        std::vector<float> first;
        for (const unsigned int threads : {1u, 2u, 4u, 7u}) {
            const FakeServices services(threads);
            TestMap<Pixel32f> target(50, 31, -9, 0);
            BoxBlur blur(c.variant);
            blur.setRadius(c.x, c.y);
            blur.process(*input, *target);
            if (threads == 1) first = target.pixels();
            EXPECT_EQ(target.pixels(), first) << threads << " threads";
            EXPECT_EQ(target->fillValue(), 17.0f);
            EXPECT_EQ(target->xAxis().edgeMode, c.edge);
            EXPECT_EQ(target->yAxis().edgeMode, c.edge);
        }
        const Kernel kx = kernelOf(static_cast<double>(c.x), c.variant);
        const Kernel ky = kernelOf(static_cast<double>(c.y), c.variant);
        std::size_t i = 0;
        for (int y = 0; y < 31; ++y) {
            for (int x = -9; x < 41; ++x) {
                const double got = static_cast<double>(first.at(i++));
                ASSERT_NEAR(got, direct(*input, x, y, kx, ky), 5e-5)
                    << c.x << ' ' << c.y << " at " << x << ' ' << y;
            }
        }
    }
}

/// The exact mean of these samples lies halfway between two floats. Its product with 1 / 49, which
/// rounds down, lies below; a quotient would be rounded to the other float.
TEST(BoxBlur, MultipliesByTheReciprocalOfItsWeights)
{
    const FakeServices services;
    TestMap<Pixel32f> input(49, 1), target(49, 1);
    const auto above1 = [](int units) { return 1.0f + std::ldexp(static_cast<float>(units), -24); };
    for (int x = 0; x < 49; ++x) input.at(x, 0) = above1(x < 44 ? 6701770 : 6701768);
    input.at(20, 0) = 1.0f - std::ldexp(1.0f, -24);
    input.at(48, 0) = above1(6701770);
    BoxBlur blur(BoxBlur::OneApplication);
    blur.setRadius(24.0f, 0.0f);
    blur.process(*input, *target);
    EXPECT_EQ(target.at(24, 0), above1(6564998)) << "the mean is 6564999 such units above 1";
}

TEST(BoxBlur, WorksInPlaceAndOnARegion)
{
    const FakeServices services(2);
    for (const auto variant : {BoxBlur::ThreeApplications, BoxBlur::OneApplication}) {
        const auto input = randomMask(33, 20, 5);
        auto same = randomMask(33, 20, 5), part = randomMask(33, 20, 6);
        TestMap<Pixel32f> target(33, 20);
        BoxBlur blur(variant, 2.5f);
        blur.process(*input, *target);
        blur.process(*same, *same);
        EXPECT_EQ(same.pixels(), target.pixels());

        auto before = randomMask(33, 20, 6);
        blur.setRegion(3, 4, 29, 11);
        blur.process(*input, *part);
        for (int y = 0; y < 20; ++y) {
            for (int x = 0; x < 33; ++x) {
                const bool inside = x >= 3 && x <= 29 && y >= 4 && y <= 11;
                ASSERT_EQ(part.at(x, y), inside ? target.at(x, y) : before.at(x, y));
            }
        }
    }
}

/// Zeros far from everything else must stay exact: the composite copies the source there.
TEST(BoxBlur, LeavesFlatFieldsFlatAndNanWhereItWas)
{
    const FakeServices services(2);
    for (const auto variant : {BoxBlur::ThreeApplications, BoxBlur::OneApplication}) {
        for (const float value : {0.0f, 0.1f, 254.7f, 3e38f}) {
            const float radius = value == 0.0f ? 5.0f : 5.3f;  // whole: the ends are not read
            const int reach =
                (value == 0.0f ? 5 : 6) * (variant == BoxBlur::OneApplication ? 1 : 3);
            TestMap<Pixel32f> map(400, 90);
            map->setEdgeMode(EdgeMode::EdgeClamp, EdgeMode::EdgeClamp);
            for (float& pixel : map.pixels()) pixel = value;
            BoxBlur blur(variant, radius);
            blur.process(*map, *map);
            EXPECT_THAT(map.pixels(), Each(value));
            for (const float other : {123456.7f, kNan, kInfinity}) {
                for (float& pixel : map.pixels()) pixel = value;
                map.at(40, 45) = other;
                blur.process(*map, *map);
                for (int y = 0; y < 90; ++y) {
                    for (int x = 0; x < 400; ++x) {
                        const bool near = std::abs(x - 40) <= reach && std::abs(y - 45) <= reach;
                        const float pixel = map.at(x, y);
                        ASSERT_TRUE(near ? std::isfinite(pixel) == std::isfinite(other)
                                         : pixel == value)
                            << x << ' ' << y << ": " << pixel;
                    }
                }
            }
        }
    }
}

TEST(BoxBlur, TakesAnyRadius)
{
    const FakeServices services;
    const auto input = randomMask(9, 4, 8);
    const auto blurred = [&input](BoxBlur::Variant variant, float x, float y, float scaleX = 1.0f,
                                  float scaleY = 1.0f) {
        TestMap<Pixel32f> target(9, 4);
        BoxBlur blur(variant);
        blur.setRadiusScale(scaleX, scaleY);
        blur.setRadius(x, y);
        blur.process(*input, *target);
        return target.pixels();
    };
    for (const auto variant : {BoxBlur::ThreeApplications, BoxBlur::OneApplication}) {
        for (const float nothing : {0.0f, -0.0f, -3.0f, -kInfinity, kNan}) {
            EXPECT_EQ(blurred(variant, nothing, nothing), input.pixels());
            EXPECT_EQ(blurred(variant, 2.0f, nothing), blurred(variant, 2.0f, 0.0f));
        }
        for (const float huge : {1e6f, 3e38f, kInfinity}) {
            EXPECT_EQ(blurred(variant, huge, huge), blurred(variant, 1e5f, 1e5f));
        }
    }
    constexpr auto kThree = BoxBlur::ThreeApplications;
    constexpr auto kOne = BoxBlur::OneApplication;
    EXPECT_EQ(blurred(kThree, 28.0f, 99.0f), blurred(kThree, 27.0f, 27.0f));
    EXPECT_NE(blurred(kThree, 26.0f, 27.0f), blurred(kThree, 27.0f, 27.0f));
    EXPECT_NE(blurred(kOne, 28.0f, 99.0f), blurred(kOne, 27.0f, 27.0f));
    // Each variant scales its horizontal radius, in its own way.
    EXPECT_EQ(blurred(kThree, 3.0f, 3.0f, 2.0f, 8.0f), blurred(kThree, 1.5f, 3.0f));
    EXPECT_EQ(blurred(kThree, 3.0f, 3.0f, 0.0f, 1.0f), blurred(kThree, 27.0f, 3.0f));
    EXPECT_EQ(blurred(kOne, 3.0f, 3.0f, 8.0f, 2.0f), blurred(kOne, 6.0f, 3.0f));
    EXPECT_EQ(blurred(kOne, 3.0f, 3.0f, 1.0f, kNan), blurred(kOne, 0.0f, 3.0f));
}

TEST(BoxBlur, OfAPartHasTheSameBitsAsOfTheWhole)
{
    const FakeServices services;
    const Region frame{-7, 4, 93, 84}, noisy{20, 30, 55, 48};
    TestMap<Pixel32f> input(100, 80, frame.x0, frame.y0);
    std::mt19937 random(5);
    for (int y = noisy.y0; y < noisy.y1; ++y) {
        for (int x = noisy.x0; x < noisy.x1; ++x) {
            input.at(x - frame.x0, y - frame.y0) = static_cast<float>(random()) * 1e-7f;
        }
    }
    for (const float radius : {0.5f, 1.0f, 2.75f, 5.5f, 9.0f}) {
        BoxBlur blur(BoxBlur::ThreeApplications, radius);
        TestMap<Pixel32f> whole(100, 80, frame.x0, frame.y0);
        blur.process(*input, *whole);
        const int reach = 3 * (static_cast<int>(radius) + 1);
        const Region part{noisy.x0 - reach, noisy.y0 - reach, noisy.x1 + reach, noisy.y1 + reach};
        Map<Pixel32f> stored;
        stored.copyGeometry(*whole);
        stored.storeOnly(blurredAlike(part, frame, radius));
        stored.allocate();
        ASSERT_LT(stored.yAxis().storeLength, 80);
        // The order of a sum shows in one float of a hundred million, so look at the segments.
        const int segment = 2 * static_cast<int>(radius) + 1;
        EXPECT_EQ(stored.xAxis().storeStart % segment, 0);
        EXPECT_EQ(stored.yAxis().storeStart % segment, 0);
        blur.process(*input, stored);
        for (int y = frame.y0; y < frame.y1; ++y) {
            for (int x = frame.x0; x < frame.x1; ++x) {
                ASSERT_EQ(stored.read(x, y), whole->read(x, y)) << radius << ' ' << x << ' ' << y;
            }
        }
    }
}

TEST(BoxBlur, ReportsMissingMemory)
{
    FakeServices services(2);
    auto map = randomMask(9, 9, 2);
    const auto before = map.pixels();
    RenderStatus status;
    BoxBlur blur(BoxBlur::ThreeApplications, 2.0f);
    services.memory.failAllocation = 1;
    blur.process(*map, *map);
    EXPECT_EQ(map.pixels(), before) << "nor is a record needed";
    blur.setStatusRecord(&status);
    services.memory.failLock = 1;
    blur.process(*map, *map);
    EXPECT_EQ(map.pixels(), before);
    EXPECT_EQ(status.aborted, 1);
    EXPECT_EQ(status.errorCode, 1000);

    status = {};
    TestMap<Pixel32f> target(9, 9);
    blur.process(*map, *target);
    blur.process(*map, *map);
    EXPECT_EQ(map.pixels(), target.pixels());
    EXPECT_EQ(services.memory.live.size(), 1u) << "kept for the next call";
}

TEST(BoxBlur, LeavesTheTargetAloneWhenItCannotOrMayNotWork)
{
    const FakeServices services;
    auto map = randomMask(9, 9, 2);
    const auto before = map.pixels();
    int polls = 0;
    RenderStatus status;
    status.abortHandle = &polls;
    status.poll = [](void* handle, int*) { return ++*static_cast<int*>(handle) > 2 ? 1 : 0; };
    BoxBlur blur(BoxBlur::OneApplication, 2.0f);
    blur.setStatusRecord(&status);
    blur.process(*map, *map);  // stopped between its passes
    EXPECT_EQ(status.aborted, 1);
    EXPECT_EQ(map.pixels(), before);

    Map<Pixel32f> empty;
    CaptureStderr();
    blur.setStatusRecord(nullptr);
    blur.process(*map, empty);
    blur.process(empty, *map);
    EXPECT_EQ(GetCapturedStderr(),
              "Map passed into Generator::process is bogus\n"
              "Map passed into Generator::process is bogus\n");
    EXPECT_EQ(map.pixels(), before);
}

}  // namespace
}  // namespace Orvane::Engine
