/// The stages of the luminance match against the blur that defines them, bit for bit.

#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include "engine/filter/BoxBlur.h"
#include "engine/filter/KnownSpread.h"
#include "engine/filter/LuminanceSpread.h"
#include "engine/filter/TileBlur.h"
#include "tests/fixtures/FakeServices.h"
#include "tests/fixtures/MapBuilder.h"

namespace Orvane::Engine {
namespace {

using Testing::FakeServices;
using Testing::TestMap;

constexpr int kWidth = 150, kHeight = 110, kX = -20, kY = 7;

/// Two planes of a region; keeps what a tile blur makes of them.
class TwoMaps final : public BlurPlanes {
public:
    TwoMaps(const Map<Pixel32f>& first, const Map<Pixel32f>& second)
        : first_(first), second_(second)
    {}

    bool read(int y, int x0, int x1, float* first, float* second) const override
    {
        for (int x = x0; x < x1; ++x) {
            first[x - x0] = first_.read(x, y);
            second[x - x0] = second_.read(x, y);
        }
        return true;
    }
    void write(int x, int y, int width, int height, const float* first,
               const float* second) override
    {
        for (int i = 0; i < width * height; ++i) {
            const int column = i % width, row = i / width;
            *blurred.first->translate(x + column, y + row) = first[row * Tiles::kSide + column];
            *blurred.second->translate(x + column, y + row) = second[row * Tiles::kSide + column];
        }
    }

    std::pair<TestMap<Pixel32f>, TestMap<Pixel32f>> blurred{
        TestMap<Pixel32f>(kWidth, kHeight, kX, kY), TestMap<Pixel32f>(kWidth, kHeight, kX, kY)};

private:
    const Map<Pixel32f>& first_;
    const Map<Pixel32f>& second_;
};

TestMap<Pixel32f> noise(std::mt19937& random)
{
    TestMap<Pixel32f> map(kWidth, kHeight, kX, kY);
    for (float& value : map.pixels()) {
        value = static_cast<float>(random() % 100000) / static_cast<float>(1 + random() % 1000);
    }
    return map;
}

TEST(TileBlur, GivesWantedTilesTheBitsOfABlurOfTheWholeRegion)
{
    const FakeServices services(2);
    std::mt19937 random(3);
    for (const int radius : {0, 2, 5, 13, 40, 300}) {
        const auto first = noise(random), second = noise(random);
        TestMap<Pixel32f> wanted(kWidth, kHeight, kX, kY);
        BoxBlur blur(BoxBlur::OneApplication, static_cast<float>(radius));
        blur.process(*first, *wanted);
        SharedWork work(nullptr);
        TileBlur tileBlur(work);
        ASSERT_TRUE(tileBlur.makeRoom(kWidth, kHeight));
        TwoMaps planes(*first, *second);
        Tiles tiles;
        tiles.cover({kX + 9, kY + 17, kX + 131, kY + 101});
        for (int i = 0; i < 7; ++i) {
            tiles.want(static_cast<int>(random() % static_cast<unsigned>(tiles.columns())),
                       static_cast<int>(random() % static_cast<unsigned>(tiles.rows())));
        }
        ASSERT_TRUE(tileBlur.run(
            tiles, {.radius = radius, .cornerX = kX, .cornerY = kY, .readable = {kY, kY + kHeight}},
            planes, {}));
        int compared = 0;
        const Region& rect = tiles.rect();
        for (int y = rect.y0; y < rect.y1; ++y) {
            for (int x = rect.x0; x < rect.x1; ++x) {
                if (!tiles.isWanted((x - rect.x0) / Tiles::kSide, (y - rect.y0) / Tiles::kSide))
                    continue;
                ASSERT_EQ(planes.blurred.first->read(x, y), wanted->read(x, y))
                    << radius << ' ' << x << ' ' << y;
                ++compared;
            }
        }
        EXPECT_GT(compared, 500);
    }
}

/// Steps maps of known pixels and compares with the blur.
void expectSpreadLikeTheBlur(int radius, TestMap<Pixel8>& known)
{
    TestMap<Pixel8> next(kWidth, kHeight, kX, kY);
    TestMap<Pixel32f> floats(kWidth, kHeight, kX, kY), support(kWidth, kHeight, kX, kY);
    std::ranges::copy(known.pixels(), floats.pixels().begin());
    BoxBlur(BoxBlur::OneApplication, static_cast<float>(radius)).process(*floats, *support);
    const float k = 1.0f + static_cast<float>(radius);
    const float threshold = 1.0f / (k * k);
    const Region part{kX + 3, kY, kX + kWidth - 5, kY + kHeight};
    KnownSpread spread(radius);
    for (const auto& [begin, end] : {std::pair{part.y0, kY + 31}, std::pair{kY + 31, part.y1}}) {
        spread.run(*known, {kX, kY, kX + kWidth, kY + kHeight}, *next, part, begin, end);
    }
    for (int y = part.y0; y < part.y1; ++y) {
        for (int x = part.x0; x < part.x1; ++x) {
            ASSERT_EQ(next->read(x, y), support->read(x, y) >= threshold ? 1 : 0)
                << radius << ' ' << x << ' ' << y;
        }
    }
}

/// Large ratios of both signs: every other order of a sum shows.
TEST(LuminanceSpread, BlursRatiosAsOverThePartThatIsReached)
{
    const FakeServices services(2);
    std::mt19937 random(8);
    constexpr int kReach = 8;
    const Region area{kX, kY, kX + kWidth, kY + kHeight};
    const Region known{kX + 50, kY + 40, kX + 97, kY + 75};
    const Region active{known.x0 - kReach - 1, known.y0 - kReach - 1, known.x1 + kReach + 1,
                        known.y1 + kReach + 1};
    SharedWork work(nullptr);
    TileBlur blur(work);
    LuminanceSpread spread(work, blur, {area, area, kReach, kReach / 2, 1});
    ASSERT_TRUE(spread.makeRoom() && blur.makeRoom(kWidth, kHeight));
    const int width = active.x1 - active.x0, height = active.y1 - active.y0;
    TestMap<Pixel32f> first(width, height, active.x0, active.y0),
        second(width, height, active.x0, active.y0);
    for (int y = area.y0; y < area.y1; ++y) {
        for (int x = area.x0; x < area.x1; ++x) {
            const bool isKnown = x >= known.x0 && x < known.x1 && y >= known.y0 && y < known.y1;
            const float large = random() % 2 ? 1e20f : -1e20f;
            const float ratio = random() % 3 ? static_cast<float>(random() % 1000) : large;
            *spread.measured().translate(x, y) = isKnown ? 1 : 0;
            *spread.ratio().translate(x, y) = ratio;
            if (!isKnown) continue;
            *first->translate(x, y) = ratio;
            *second->translate(x, y) = 1.0f;
        }
    }
    TestMap<Pixel32f> gain(kWidth, kHeight, kX, kY);
    spread.run(area, known, *gain);
    BoxBlur blurFirst(BoxBlur::OneApplication, kReach), blurSecond(BoxBlur::OneApplication, kReach);
    blurFirst.process(*first, *first);
    blurSecond.process(*second, *second);
    for (int y = known.y0; y < known.y1; ++y) {
        for (int x = known.x0; x < known.x1; ++x) {
            ASSERT_EQ(gain->read(x, y), first->read(x, y) / second->read(x, y)) << x << ' ' << y;
        }
    }
}

TEST(KnownSpread, CountsAsTheBlurredMapWouldTell)
{
    const FakeServices services(1);
    std::mt19937 random(4);
    for (const int radius : {0, 1, 2, 3, 9, 20, 130}) {
        TestMap<Pixel8> known(kWidth, kHeight, kX, kY);
        for (Pixel8& pixel : known.pixels()) {
            // Sparse, so that many boxes hold three or four.
            pixel = random() % 100 < (radius < 4 ? 25u : radius < 40 ? 1u : 0u);
        }
        for (int i = 0; radius == 130 && i < 4; ++i) {
            known.pixels()[static_cast<std::size_t>(i * 37)] = 1;
        }
        expectSpreadLikeTheBlur(radius, known);
    }
}

TEST(KnownSpread, CountsTheSameAtTheEdgesOfAreas)
{
    const FakeServices services(1);
    std::mt19937 random(6);
    const auto below = [&random](int n) {
        return static_cast<int>(random() % static_cast<unsigned>(n));
    };
    for (int round = 0; round < 60; ++round) {
        // Areas of any height: columns that hold fewer than four, and columns that hold more.
        TestMap<Pixel8> known(kWidth, kHeight, kX, kY);
        for (int area = below(6); area >= 0; --area) {
            const int x0 = below(kWidth), x1 = x0 + below(kWidth - x0) + 1;
            const int y0 = below(kHeight),
                      y1 = std::min(y0 + 1 + below(below(2) ? 4 : 60), kHeight);
            for (int y = y0; y < y1; ++y) {
                for (int x = x0; x < x1; ++x) known.at(x, y) = 1;
            }
        }
        for (const int radius : {1, 7, 15, 16, 20, 31, 60}) expectSpreadLikeTheBlur(radius, known);
        if (HasFatalFailure()) return;
    }
}

}  // namespace
}  // namespace Orvane::Engine
