// Whole renders whose pixels are recorded as checksums in RecordedSums.h: one for each scene and
// depth, the same with any number of threads.

#include <array>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/endToEnd/ExactPictures.h"
#include "tests/endToEnd/RecordedSums.h"
#include "tests/fixtures/TestHost.h"

namespace Tesseret::EndToEnd {
namespace {

using namespace Host;

constexpr std::array kDepths = {Depth::Byte, Depth::Short, Depth::Float};

/// A mask value of 0 to 65535 at a pixel.
using Mask = int (*)(int x, int y);

struct Setting {
    const char* parameter;
    ParameterValue value;
};

enum class Replay {
    No,
    SameSource,     ///< the second frame has another seed
    AnotherSource,  ///< and other pixels
};

constexpr OfxRectI kSmall{0, 0, 96, 72};
constexpr OfxRectI kPart{17, 9, 80, 61};

/// The region to fill.
struct Region {
    Mask mask;       ///< null: nothing is connected
    int fillRegion;  ///< the choice: 0 everything, 1 and 2 the source's alpha, 3 and 4 the matte
};
constexpr Region kEverything{nullptr, 0};

/// Settings that few scenes change.
struct Special {
    OfxRectI bounds = kSmall;  ///< of the source and the matte
    ExactValue (*source)(unsigned int seed) = grain;
    unsigned int textures = 0;                      ///< so many texture clips, of several sizes
    std::optional<OfxRectI> window = std::nullopt;  ///< pixels of the render; all unless set
    double scale = 1.0;
    double aspectRatio = 1.0;
    Replay replay = Replay::No;
};

struct Scene {
    const char* name;
    Region region;
    std::vector<Setting> settings;  ///< what differs from those in `setUp`
    Special special = {};
};

int within(bool inside)
{
    return inside ? 65535 : 0;
}

/// Soft over six pixels.
int disc(int x, int y)
{
    const int left = 20 * 20 - (x - 50) * (x - 50) - (y - 36) * (y - 36);
    return left <= 0 ? 0 : left >= 200 ? 65535 : left * left;
}

/// Five rays of different lengths round (64, 52).
int star(int x, int y)
{
    const int dx = x - 64, dy = y - 52;
    const bool body = dx * dx + dy * dy < 14 * 14;
    const bool right = dx > 0 && dx < 34 && dy * 4 < 34 - dx && dy * 4 > dx - 34;
    const bool left = dx < 0 && dx > -40 && dy * 5 < 40 + dx && dy * 5 > -40 - dx;
    const bool up = dy > 0 && dy < 30 && dx * 3 < 30 - dy && dx * 3 > dy - 30;
    const bool down = dy < 0 && dy > -34 && dx + dy / 2 < 8 && dx + dy / 2 > -8;
    return within(body || right || left || up || down);
}

/// The first has a hole and a weak corner; the second is left out.
int twoAreas(int x, int y)
{
    const bool hole = x >= 34 && x < 40 && y >= 20 && y < 27;
    if (x >= 22 && x < 30 && y >= 12 && y < 16) return 256;
    if (x >= 22 && x < 52 && y >= 12 && y < 40 && !hole) return 40000;
    return within(x >= 64 && x < 80 && y >= 44 && y < 56);
}

/// Touches two edges of the picture.
int corner(int x, int y)
{
    return within(x + 2 * y < 60);
}

int speck(int x, int y)
{
    return within(x >= 40 && x < 43 && y >= 30 && y < 32);
}

/// Leaves so little of the picture clear that a block takes hundreds of attempts to get there.
int allButACorner(int x, int y)
{
    return within(x >= 46 || y >= 37);
}

const Scene kScenes[] = {
    // The whole picture
    {"Plain", kEverything, {{"numSamples", 9}}},
    {"Blended", kEverything, {{"overlap", 13}, {"blendSize", 4}}, {.bounds = {-7, 5, 98, 77}}},
    {"WideOverlap", kEverything, {{"overlap", 40}, {"blendSize", 40}}},
    {"BoxSmallerThanABlock",
     kEverything,
     {{"blockSize", 50},
      {"blendSize", 1},
      {"sampleCorner1", std::vector{0.7, 0.3}},
      {"sampleCorner2", std::vector{0.3, 0.9}}}},
    {"ThreeTextures", kEverything, {{"blendSize", 2}, {"numSamples", 3}}, {.textures = 3}},
    {"Patches", kEverything, {{"numSamples", 30}}, {.source = patches}},
    {"Window", kEverything, {{"blendSize", 2}}, {.window = kPart}},
    {"HalfSize",
     kEverything,
     {{"blockSize", 63}, {"overlap", 27}, {"blendSize", 11}},
     {.bounds = {0, 0, 161, 121}, .scale = 0.5}},
    {"WidePixels", kEverything, {{"overlap", 14}, {"blendSize", 5}}, {.aspectRatio = 2.0}},
    {"Replayed",
     kEverything,
     {{"overlap", 15}, {"blendSize", 7}},
     {.replay = Replay::AnotherSource}},
    {"ReplayedWindow",
     kEverything,
     {{"blendSize", 3}},
     {.window = kPart, .replay = Replay::SameSource}},
    // A region
    {"SourceAlpha", {disc, 1}, {}},
    {"SourceInvertedAlpha", {corner, 2}, {{"pathWidth", 2.0}}},
    {"Disc", {disc, 3}, {{"edgeBlend", 2.5}}},
    {"DiscOfPatches", {disc, 3}, {{"numSamples", 40}, {"pathWidth", 6.5}}, {.source = patches}},
    {"InvertedMatte", {twoAreas, 4}, {{"edgeBlend", 0.0}}},
    {"TwoAreas", {twoAreas, 3}, {{"pathWidth", 2.3}, {"blendSize", 2}}},
    {"Corner", {corner, 3}, {{"pathWidth", 5.0}}},
    {"Speck", {speck, 3}, {{"pathWidth", 2.0}, {"edgeBlend", 0.0}}},
    {"Star", {star, 3}, {{"pathWidth", 12.0}, {"edgeBlend", 0.0}}, {.bounds = {0, 0, 128, 104}}},
    {"StarAtHalfSize",
     {star, 3},
     {{"blockSize", 67}, {"blendSize", 3}},
     {.bounds = {0, 0, 128, 104}, .scale = 0.5}},
    {"StarInAWindow",
     {star, 3},
     {{"luminanceMatch", 1}},
     {.bounds = {0, 0, 128, 104}, .window = OfxRectI{40, 30, 101, 77}}},
    {"Avoids", {disc, 3}, {{"avoidFillRegion", 1}, {"numSamples", 12}, {"blendSize", 2}}},
    {"AvoidsWithTextures", {disc, 3}, {{"avoidFillRegion", 1}}, {.textures = 3}},
    {"AvoidsWithDifficulty",
     {allButACorner, 3},
     {{"avoidFillRegion", 1}, {"numSamples", 1}, {"pathWidth", 2.0}},
     {.bounds = {0, 0, 200, 150}}},
    {"LuminanceBlur5", {disc, 3}, {{"luminanceMatch", 1}, {"luminanceBlur", 5.0}}},
    {"LuminanceBlur24",
     {disc, 3},
     {{"luminanceMatch", 1}, {"luminanceBlur", 24.0}, {"blendSize", 1}}},
    {"LuminanceBlur61",
     {twoAreas, 3},
     {{"luminanceMatch", 1}, {"luminanceBlur", 61.9}},
     {.textures = 2}},
    // A picture much larger than the region, where what cannot show is left out
    {"FarFromTheRegion",
     {disc, 3},
     {{"edgeBlend", 2.0}},
     {.bounds = {-30, -12, 280, 220}, .source = opaqueGrain}},
    {"FarFromTheRegionWithLuminance",
     {disc, 3},
     {{"luminanceMatch", 1}, {"luminanceBlur", 12.0}},
     {.bounds = {0, 0, 290, 230}, .source = opaqueGrain}},
    {"FarFromTheRegionWithLuminanceOffTheOrigin",
     {disc, 3},
     {{"luminanceMatch", 1}, {"luminanceBlur", 12.0}},
     {.bounds = {-90, -70, 200, 160}, .source = opaqueGrain}},
    {"FarFromTheRegionInAWindow",
     {disc, 3},
     {{"luminanceMatch", 1}, {"luminanceBlur", 12.0}},
     {.bounds = {-10, -12, 280, 220}, .source = opaqueGrain, .window = OfxRectI{20, 10, 250, 90}}},
    {"ReplayedRegion",
     {disc, 3},
     {{"luminanceMatch", 1}, {"luminanceBlur", 11.0}, {"blendSize", 2}},
     {.replay = Replay::AnotherSource}},
    {"ReplayedRegionWithTextures",
     {disc, 3},
     {{"avoidFillRegion", 1}, {"blendSize", 1}},
     {.textures = 3, .window = kPart, .replay = Replay::SameSource}},
};

std::ostream& operator<<(std::ostream& out, const Scene& scene)
{
    return out << scene.name;
}

OfxRectI scaled(const OfxRectI& bounds, double scale)
{
    return toPixels({double(bounds.x1), double(bounds.y1), double(bounds.x2), double(bounds.y2)},
                    {scale, scale}, 1.0);
}

/// The scene's picture; its alpha is the mask where that is taken from there.
std::shared_ptr<Picture> sourceOf(const Scene& scene, Depth depth, unsigned int seed)
{
    const bool masks = scene.region.fillRegion == 1 || scene.region.fillRegion == 2;
    const ExactValue value = scene.special.source(seed);
    auto picture = exactPicture(scene.special.bounds, depth, [&](int x, int y, int c) {
        return masks && c == 3 ? scene.region.mask(x, y) : value(x, y, c);
    });
    picture->setPixelAspectRatio(scene.special.aspectRatio);
    return picture;
}

void setUp(const Scene& scene, Depth depth, Fixtures::TestHost& host)
{
    Instance& instance =
        host.create(kOfxImageEffectContextGeneral, sourceOf(scene, depth, /*seed=*/1));
    if (scene.region.mask != nullptr && scene.region.fillRegion >= 3) {
        const auto value = [&scene](int x, int y, int) { return scene.region.mask(x, y); };
        host.connect("Matte", exactPicture(scene.special.bounds, depth, value, Components::Alpha));
    }
    constexpr std::array kTextureBounds = {OfxRectI{0, 0, 80, 70}, OfxRectI{-20, -9, 60, 64},
                                           OfxRectI{5, 3, 107, 58}};
    for (unsigned int i = 0; i < scene.special.textures; ++i) {
        const std::string number = std::to_string(i + 1);
        host.connect("Texture" + number,
                     exactPicture(kTextureBounds[i], depth, scene.special.source(11 * (2 + i))));
        instance.set("useTexture" + number, 1);
    }
    for (const auto& [parameter, value] :
         {Setting{"blockSize", 30}, Setting{"overlap", 10}, Setting{"numSamples", 4},
          Setting{"pathWidth", 4.0}, Setting{"edgeBlend", 1.0}, Setting{"seed", 9}}) {
        instance.set(parameter, value);
    }
    instance.set("fillRegion", scene.region.fillRegion);
    for (const auto& [parameter, value] : scene.settings) instance.set(parameter, value);
}

Picture rendered(const Scene& scene, Depth depth, unsigned int threads)
{
    Fixtures::TestHost host({}, threads);
    setUp(scene, depth, host);
    const OfxRectI bounds = scaled(scene.special.bounds, scene.special.scale);
    Picture output;
    const auto render = [&](double time, const OfxRectI& window) {
        output = Picture(bounds, depth, Components::RGBA);
        EXPECT_EQ(host.instance().render({.time = time,
                                          .window = window,
                                          .scale = {scene.special.scale, scene.special.scale}},
                                         output),
                  kOfxStatOK);
    };
    if (scene.special.replay != Replay::No) {
        host.instance().set("temporalConsistancy", 1);
        render(0.0, bounds);
        host.instance().set("seed", 1234);
        if (scene.special.replay == Replay::AnotherSource) {
            host.connect("Source", sourceOf(scene, depth, /*seed=*/5));
        }
    }
    render(scene.special.replay == Replay::No ? 0.0 : 1.0, scene.special.window.value_or(bounds));
    host.destroyInstance();
    host.expectClean();
    return output;
}

Sums recordedSums(const Scene& scene)
{
    for (const auto& [name, sums] : kRecordedSums) {
        if (std::string_view(name) == scene.name) return sums;
    }
    return {};
}

/// The scene's line in the table of checksums.
std::string lineOf(const Scene& scene, const Sums& sums)
{
    std::array<char, 80> numbers{};
    std::snprintf(numbers.data(), numbers.size(), "{0x%016jx, 0x%016jx, 0x%016jx}",
                  std::uintmax_t{sums[0]}, std::uintmax_t{sums[1]}, std::uintmax_t{sums[2]});
    return "{\"" + std::string(scene.name) + "\", " + numbers.data() + "},";
}

constexpr auto kSceneName = [](const auto& info) { return std::string(info.param.name); };

class Recorded : public ::testing::TestWithParam<Scene> {};
INSTANTIATE_TEST_SUITE_P(Scenes, Recorded, ::testing::ValuesIn(kScenes), kSceneName);

TEST_P(Recorded, PicturesAreAsTheyWereWithAnyNumberOfThreads)
{
    const Scene& scene = GetParam();
    Sums sums{};
    for (std::size_t i = 0; i < kDepths.size(); ++i) {
        const Picture picture = rendered(scene, kDepths[i], 1);
        sums[i] = Fixtures::checksum(picture);
        for (const unsigned int threads : {2u, 3u, 7u}) {
            EXPECT_TRUE(Fixtures::samePixels(rendered(scene, kDepths[i], threads), picture))
                << threads << " threads, depth " << i;
        }
    }
    EXPECT_TRUE(sums == recordedSums(scene)) << "is now:\n    " << lineOf(scene, sums);
}

}  // namespace
}  // namespace Tesseret::EndToEnd
