// Whole renders with a mask: what is filled, and that everything else stays.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include <gmock/gmock.h>

#include "tests/endToEnd/Area.h"
#include "tests/endToEnd/Rig.h"

namespace Tesseret::Fixtures {
namespace {

using namespace Tesseret::Host;
using namespace Tesseret::EndToEnd;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

class MaskedDepths : public ::testing::TestWithParam<Depth> {};
INSTANTIATE_TEST_SUITE_P(All, MaskedDepths,
                         ::testing::Values(Depth::Byte, Depth::Short, Depth::Float));

struct MatteCase {
    const char* what;
    Shape matte, region;
    OfxRectI bounds = kBounds;
    int fillRegion = 3;
};

const MatteCase kMattes[] = {
    {"touches two edges", box(0, 50, 20, 70), box(0, 50, 20, 70)},
    {"crosses two edges", box(-9, -5, 20, 14), box(-9, -5, 20, 14), {-30, -20, 110, 90}},
    {"one pixel", box(40, 30, 41, 31), box(40, 30, 41, 31)},
    {"covers everything", box(0, 0, 96, 70), box(0, 0, 96, 70)},
    {"covers more than everything",
     box(-20, -15, 116, 85),
     box(-20, -15, 116, 85),
     {-22, -17, 118, 87}},
    {"two areas: the lower one",
     [](int x, int y) { return box(10, 40, 25, 55)(x, y) + box(60, 10, 75, 25)(x, y); },
     box(60, 10, 75, 25)},
    {"a hole in it",
     [](int x, int y) { return box(35, 20, 65, 50)(x, y) - box(45, 30, 50, 35)(x, y); },
     box(35, 20, 65, 50)},
    {"a soft edge",
     [](int x, int y) { return std::max(0.0, 1.0 - std::hypot(x - 50, y - 35) / 16.0); },
     [](int x, int y) { return std::hypot(x - 50, y - 35) < 15.9 ? 1.0 : 0.0; }},
    {"weak all over", box(35, 20, 65, 50, 0.01), box(35, 20, 65, 50)},
    {"smaller than the picture", box(35, 20, 65, 50), box(35, 20, 65, 50), {35, 20, 65, 50}},
    {"shifted", box(60, 20, 150, 50), box(60, 20, 140, 50), {50, -20, 140, 60}},
    {"off the picture", box(210, 20, 220, 40), nothing, {200, 10, 230, 50}},
    {"empty", nothing, nothing},
    {"inverted", [](int x, int y) { return 1.0 - box(35, 20, 65, 50)(x, y); }, box(35, 20, 65, 50),
     kBounds, 4},
};

TEST_P(MaskedDepths, FillTheRegionAndKeepWhatIsOutsideItsBand)
{
    MaskedRig rig(GetParam());
    rig.instance().set("pathWidth", 2.0);
    const auto source = texturePicture(kBounds, GetParam(), 1);
    for (const MatteCase& c : kMattes) {
        rig.connect("Matte", mattePicture(c.matte, GetParam(), c.bounds));
        rig.instance().set("fillRegion", c.fillRegion);
        const Area near = Area(kBounds, c.region).grown(reachOf(2, 1));
        for (const int match : {0, 1}) {
            rig.instance().set("luminanceMatch", match);
            const Picture picture = rig.render();
            EXPECT_TRUE(keepsOutside(near, *source, picture)) << c.what;
            EXPECT_TRUE(fills(c.region, *source, picture)) << c.what;
        }
    }
}

TEST_P(MaskedDepths, TakeTheMaskFromTheSourcesAlpha)
{
    MaskedRig rig(GetParam());
    for (const int choice : {1, 2}) {
        const auto source = texturePicture(kBounds, GetParam(), 1);
        fillChannel(*source, kBounds, 3, choice == 1 ? 0.0 : 1.0);
        fillChannel(*source, {35, 20, 65, 50}, 3, choice == 1 ? 1.0 : 0.0);
        rig.connect("Source", source);
        rig.instance().set("fillRegion", choice);
        const Picture picture = rig.render();
        const Shape region = box(35, 20, 65, 50);
        EXPECT_TRUE(keepsOutside(Area(kBounds, region).grown(reachOf(4, 1)), *source, picture));
        EXPECT_TRUE(fills(region, *source, picture));
    }
}

/// Without consistency, what cannot show is left out where alpha is known.
TEST_P(MaskedDepths, LeaveOutNothingThatShows)
{
    const OfxRectI bounds{-20, 10, 340, 250};
    for (const bool isOpaque : {true, false}) {
        const auto source = texturePicture(bounds, GetParam(), 1);
        if (!isOpaque) fillChannel(*source, {100, 100, 101, 101}, 3, 0.5);
        MaskedRig rig(GetParam());
        rig.destroyInstance();
        Instance& instance = rig.create(kOfxImageEffectContextGeneral, source);
        rig.connect("Matte", mattePicture(box(150, 90, 171, 121), GetParam(), bounds));
        instance.set("blockSize", 30);
        instance.set("overlap", 10);
        instance.set("numSamples", 4);
        instance.set("pathWidth", 3.0);
        instance.set("edgeBlend", 1.0);
        for (const int match : {0, 1}) {
            instance.set("luminanceMatch", match);
            instance.set("avoidFillRegion", match);
            for (const OfxRectI window : {bounds, OfxRectI{60, 60, 290, 120}}) {
                Picture leftOut(bounds, GetParam()), whole(bounds, GetParam());
                instance.set("temporalConsistancy", 0);
                EXPECT_EQ(rig.render(0.0, window, leftOut), kOfxStatOK);
                instance.set("temporalConsistancy", 1);
                EXPECT_EQ(rig.render(0.0, window, whole), kOfxStatOK);
                EXPECT_TRUE(samePixels(leftOut, whole)) << isOpaque << match << window.x1;
            }
        }
    }
}

TEST(Masked, LengthsOfAnySizeAreDefined)
{
    MaskedRig rig;
    const auto source = texturePicture(kBounds, Depth::Byte, 1);
    Instance& instance = rig.instance();
    rig.quirks().memoryLimit = std::size_t{1} << 29;
    instance.set("luminanceMatch", 1);
    instance.set("blockSize", 57);
    instance.set("numSamples", 1);
    struct Case {
        double pathWidth, edgeBlend, luminanceBlur;
        bool isFilled;
    };
    const Case cases[] = {
        {0, 0, 0, false},      {0, 1, 10, false},        {kNaN, kNaN, kNaN, false},
        {4, 0, 500, true},     {4, 0.01, 2, true},       {0.5, 0.5, 1e9, true},
        {20, 0, 10, true},     {200, 0, 10, false},      {4, 200, 10, true},
        {1, 2, -7, true},      {9e6, 5, 500, false},     {4, 9e6, 10, false},
        {1e300, 0, 10, false}, {kInfinity, 0, 10, false}};
    for (const Case& c : cases) {
        instance.set("pathWidth", c.pathWidth);
        instance.set("edgeBlend", c.edgeBlend);
        instance.set("luminanceBlur", c.luminanceBlur);
        CaptureStderr();  // a rectangle that is too large is reported there
        const Picture picture = rig.render();
        GetCapturedStderr();
        const auto what =
            ::testing::PrintToString(c.pathWidth) + " " + ::testing::PrintToString(c.edgeBlend);
        if (!c.isFilled) {
            EXPECT_TRUE(keepsOutside(Area(kBounds, nothing), *source, picture)) << what;
            continue;
        }
        EXPECT_FALSE(keepsOutside(Area(kBounds, nothing), *source, picture)) << what;
        const int reach = std::min(reachOf(c.pathWidth, c.edgeBlend), 96);
        EXPECT_TRUE(keepsOutside(Area(kBounds, disc).grown(reach), *source, picture)) << what;
    }
}

TEST(Masked, SourcesOfAnyValueAreDefined)
{
    struct Case {
        const char* what;
        bool isFinite;
        std::function<float(float)> value;
    };
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const Case cases[] = {
        {"flat", true, [](float) { return 0.5f; }},
        {"black", true, [](float) { return 0.0f; }},
        {"negative", true, [](float v) { return v - 0.5f; }},
        {"negative zeros", true, [](float v) { return v < 0.5f ? -0.0f : v; }},
        {"the largest floats", true, [](float v) { return (v * 2.0f - 1.0f) * 3e38f; }},
        {"NaN", false, [=](float v) { return v < 0.4f ? nan : v; }},
        {"NaN alone", false, [=](float) { return nan; }},
        {"infinite", false, [](float v) { return v < 0.4f ? 1.0f / 0.0f : -v / 0.0f; }},
    };
    MaskedRig rig(Depth::Float);
    const Area near = Area(kBounds, disc).grown(reachOf(4, 1));
    for (const Case& c : cases) {
        const auto source = texturePicture(kBounds, Depth::Float, 1);
        for (int y = 0; y < 70; ++y) {
            for (int x = 0; x < 96; ++x) {
                for (int i = 0; i < 3; ++i) {
                    auto& channel = source->pixel<float>(x, y)[i];
                    channel = c.value(channel);
                }
            }
        }
        rig.connect("Source", source);
        for (const int match : {0, 1}) {
            rig.instance().set("luminanceMatch", match);
            const Picture picture = rig.render();
            if (c.isFinite) {
                EXPECT_TRUE(keepsOutside(near, *source, picture)) << c.what;
            }
        }
    }
}

TEST_P(MaskedDepths, TheSameWithAnyNumberOfThreads)
{
    for (const int match : {0, 1}) {
        const auto rendered = [&](unsigned int threads) {
            MaskedRig rig(GetParam(), {}, threads);
            rig.instance().set("luminanceMatch", match);
            return rig.render();
        };
        const Picture expected = rendered(1);
        for (const unsigned int threads : {2u, 4u, 7u}) {
            EXPECT_TRUE(samePixels(rendered(threads), expected)) << threads << " threads";
        }
    }
}

/// One picture at 8 bits, at 16 (each value 257 times), and in floats (each value by 255). The
/// errors of candidates agree but for the last bits of a float, so all depths choose the same
/// blocks. The boundary need not be the same: the walks that cut the band end at 0.01 in mask units
/// at every depth, which is a larger share of M at float depth, so the cut is shorter there, and
/// the costs of pixels are integers at 8 and 16 bits. Where a band of floats stays below 0.01,
/// as the one round a single pixel does, there is no boundary at all.
TEST(Masked, DepthsAgreeInTheirBlocksAndAwayFromTheBoundary)
{
    const auto source = texturePicture(kBounds, Depth::Byte, 1);
    const auto matte = mattePicture(disc, Depth::Byte);
    const Area inner =
        Area(kBounds, [](int x, int y) { return 1.0 - disc(x, y); }).grown(reachOf(0, 1));
    NoteListener byte;
    MaskedRig rig;
    rig.host().setListener(&byte);
    const Picture expected = rig.render();
    for (const Depth depth : {Depth::Short, Depth::Float}) {
        MaskedRig deep(depth);
        deep.connect("Source",
                     std::make_shared<Picture>(source->converted(depth, source->components())));
        deep.connect("Matte",
                     std::make_shared<Picture>(matte->converted(depth, matte->components())));
        NoteListener listener;
        deep.host().setListener(&listener);
        const Picture picture = deep.render().converted(Depth::Byte, Components::RGBA);
        ASSERT_EQ(listener.blocks.size(), byte.blocks.size());
        for (std::size_t i = 0; i < byte.blocks.size(); ++i) {
            EXPECT_EQ(std::memcmp(&listener.blocks[i], &byte.blocks[i], sizeof byte.blocks[i]), 0);
        }
        for (int y = 0; y < 70; ++y) {
            for (int x = 0; x < 96; ++x) {
                if (inner.has(x, y)) continue;
                for (int i = 0; i < 3; ++i) {
                    ASSERT_NEAR(picture.channel(x, y, i), expected.channel(x, y, i), 1.0);
                }
            }
        }
    }
}

TEST_P(MaskedDepths, ABandThatIsTooWeakForAWalkFillsNothing)
{
    MaskedRig rig(GetParam());
    NoteListener listener;
    rig.host().setListener(&listener);
    const auto isFilled = [&](const Shape& matte) {
        listener.notes.clear();
        rig.connect("Matte", mattePicture(matte, GetParam()));
        rig.render();
        return std::ranges::none_of(listener.notes, [](const std::string& note) {
            return note.find("nothing was filled") != std::string::npos;
        });
    };
    EXPECT_EQ(isFilled(box(40, 30, 41, 31)), GetParam() != Depth::Float);
    EXPECT_TRUE(isFilled(box(40, 30, 43, 33)));
}

/// In the inner corner of an angle the search can close its loop after a few pixels.
TEST(Masked, TakesTheRegionItselfWhereTheLoopDoesNotEncloseIt)
{
    const Shape angle = [](int x, int y) {
        return std::max(box(20, 12, 80, 28)(x, y), box(20, 12, 36, 60)(x, y));
    };
    NoteListener listener;
    MaskedRig rig;
    const auto source = texturePicture(kBounds, Depth::Byte, 1);
    rig.connect("Matte", mattePicture(angle, Depth::Byte));
    rig.host().setListener(&listener);
    const Area near = Area(kBounds, angle).grown(reachOf(4, 1));
    for (int seed = 1; seed <= 40; ++seed) {
        rig.instance().set("seed", seed);
        const Picture picture = rig.render();
        EXPECT_TRUE(keepsOutside(near, *source, picture)) << seed;
        EXPECT_TRUE(fills(angle, *source, picture)) << seed;
    }
    EXPECT_THAT(listener.notes, Contains(HasSubstr("does not enclose the region")));
    EXPECT_LT(listener.notes.size(), 40u) << "and elsewhere it does";
    EXPECT_EQ(listener.open, 0);
}

/// A grey ground that grows lighter from left to right, with a red spot on it.
std::shared_ptr<Picture> pictureOfASpot(Depth depth)
{
    auto picture = texturePicture(kBounds, depth, 1);
    const double whole = depth == Depth::Byte ? 255.0 : depth == Depth::Short ? 65535.0 : 1.0;
    for (int y = 0; y < 70; ++y) {
        for (int x = 0; x < 96; ++x) {
            const bool onSpot = std::hypot(x - 48, y - 35) < 8.0;
            const double ground = picture->channel(x, y, 0) * (20 + x) / 128;
            for (int c = 0; c < 3; ++c) {
                const double value = onSpot ? (c == 0 ? whole : 0.0) : ground;
                picture->setChannel(x, y, c, depth == Depth::Float ? value : std::floor(value));
            }
        }
    }
    return picture;
}

/// Each of these pictures was inspected: the spot is gone without a rim, and only with luminance
/// match the fill on the spot's left is as dark as its surroundings.
TEST(Masked, PicturesStayAsTheyWere)
{
    struct Case {
        Depth depth;
        int match;
        std::uint64_t sum;
    };
    const Case cases[] = {
        {Depth::Byte, 0, 0xd4f8369678573462},  {Depth::Byte, 1, 0x4240c1049059998e},
        {Depth::Short, 0, 0x66fd193d823f6abb}, {Depth::Short, 1, 0xaab511d565d30413},
        {Depth::Float, 0, 0x1cd35bfec92bff54}, {Depth::Float, 1, 0x3fa4caa27aeeccf5}};
    for (const Case& c : cases) {
        MaskedRig rig(c.depth);
        rig.connect("Source", pictureOfASpot(c.depth));
        rig.instance().set("avoidFillRegion", 1);
        rig.instance().set("luminanceMatch", c.match);
        const auto sum = checksum(rig.render());
        EXPECT_EQ(sum, c.sum) << "0x" << std::hex << sum;
    }
}

}  // namespace
}  // namespace Tesseret::Fixtures
