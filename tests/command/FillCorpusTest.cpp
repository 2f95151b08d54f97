/// `tesseret fill` on drawn textures, grounds that meet, and structures that nothing continues.

#include <array>
#include <cmath>
#include <functional>
#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "files/PictureReader.h"
#include "quality/FillScorer.h"
#include "tests/fixtures/MatteFixture.h"

namespace Tesseret::Command {

using namespace Fixtures;

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr int kSide = 280;
constexpr Spot kThing{108, 100, 168, 164};

/// 0 to 1, by a mix of the arguments' bits.
double hashed(int x, int y, int salt)
{
    auto h = std::uint32_t(x) * 0x9E3779B1u ^ std::uint32_t(y) * 0x85EBCA6Bu ^
             std::uint32_t(salt) * 0xC2B2AE35u;
    h = (h ^ (h >> 15)) * 0x2C1B3C6Du;
    h = (h ^ (h >> 12)) * 0x297A2D39u;
    return double((h ^ (h >> 15)) >> 8) / double(1 << 24);
}

/// Smooth noise with features of about `size` pixels, which may be longer one way.
double smooth(double x, double y, double sizeX, double sizeY, int salt)
{
    const double u = x / sizeX, v = y / sizeY;
    const int column = int(std::floor(u)), row = int(std::floor(v));
    const auto eased = [](double t) { return t * t * (3 - 2 * t); };
    const double a = eased(u - column), b = eased(v - row);
    const auto at = [&](int dx, int dy) { return hashed(column + dx, row + dy, salt); };
    return (1 - b) * ((1 - a) * at(0, 0) + a * at(1, 0)) + b * ((1 - a) * at(0, 1) + a * at(1, 1));
}

/// The distances to the nearest and the second of points strewn one to a cell, and the nearest's
/// own number from 0 to 1.
std::array<double, 3> cells(int x, int y, int size)
{
    std::array<double, 3> found{1e9, 1e9, 0};
    for (int r = y / size - 1; r <= y / size + 1; ++r) {
        for (int c = x / size - 1; c <= x / size + 1; ++c) {
            const double distance =
                std::hypot((c + hashed(c, r, 1)) * size - x, (r + hashed(c, r, 2)) * size - y);
            if (distance < found[0]) {
                found = {distance, found[0], hashed(c, r, 3)};
            } else {
                found[1] = std::min(found[1], distance);
            }
        }
    }
    return found;
}

using Tone = std::function<double(int x, int y)>;

double stones(int x, int y, int size)
{
    const auto [nearest, second, own] = cells(x, y, size);
    return (second - nearest < 2.5 ? 60 : 120 + 60 * own) + 12 * hashed(x, y, 4);
}

double cobbles(int x, int y)
{
    return stones(x, y, 20);
}

double bricks(int x, int y)
{
    const int row = y / 14, shifted = x + (row % 2) * 16;
    if (y % 14 < 2 || shifted % 32 < 2) return 175 + 10 * hashed(x, y, 5);
    return 95 + 35 * hashed(shifted / 32, row, 6) + 14 * hashed(x, y, 7);
}

double clouds(int x, int y)
{
    return 120 + 70 * smooth(x, y, 40, 24, 8) + 25 * smooth(x, y, 12, 8, 9) + 3 * hashed(x, y, 10);
}

double water(int x, int y)
{
    return 90 + 60 * smooth(x, y, 26, 5, 11) + 20 * smooth(x, y, 9, 3, 12) + 5 * hashed(x, y, 13);
}

double sand(int x, int y)
{
    return 165 + 40 * hashed(x, y, 14) + 12 * smooth(x, y, 30, 30, 15);
}

double grass(int x, int y)
{
    return 60 + 90 * smooth(x, y, 3, 11, 16) + 20 * hashed(x, y, 17);
}

/// A brightness as brown, for a ground; `blue` for the sky and water.
Painter painted(const Tone& tone, bool blue = false)
{
    return [=](int x, int y) {
        const double t = std::clamp(tone(x, y), 0.0, 255.0);
        const int full = int(t), less = int(0.72 * t), mid = int(0.9 * t);
        return blue ? std::vector{less, mid, full} : std::vector{full, mid, less};
    };
}

class FillCorpus : public RenderFixture {
protected:
    /// Paints the ground, the same with a thing on it, and the thing's matte.
    void paintCase(const Painter& ground, const Spot& thing)
    {
        thing_ = thing;
        paint(in("clean.png"), kSide, kSide, ground);
        paint(in("a.png"), kSide, kSide, [=](int x, int y) {
            return thing.holds(x, y) ? std::vector{255, 0, 255} : ground(x, y);
        });
        paint(in("m.png"), kSide, kSide, masks({thing}));
    }

    Outcome fill(const std::string& output, CommandRun::Arguments more = {}) const
    {
        more.insert(more.begin(), {"fill", "--source", in("a.png"), "--matte", in("m.png"),
                                   "--output", in(output)});
        return run(more);
    }

    /// The score of a picture as a fill of the thing's box.
    double score(const std::string& name) const
    {
        const Picture source = Files::readPicture(in("a.png")).picture;
        const Picture lost =
            Files::readPicture(in("m.png"), Files::ReadAs::Matte, Depth::Byte).picture;
        const OfxRectI area{thing_.x1, kSide - thing_.y2, thing_.x2, kSide - thing_.y1};
        return Quality::FillScorer(source, lost, area)
            .score(Files::readPicture(in(name)).picture)
            .total;
    }

    Spot thing_{};
    std::optional<LoadedPicture> first_;
};

struct Texture {
    const char* name;
    Tone tone;
};

void PrintTo(const Texture& texture, std::ostream* stream)
{
    *stream << texture.name;
}

class FilledTexture : public FillCorpus, public testing::WithParamInterface<Texture> {};

TEST_P(FilledTexture, ScoresLikeTheTextureItself)
{
    paintCase(painted(GetParam().tone), kThing);
    const Outcome filled = fill("out.png");
    ASSERT_EQ(filled.code, 0) << filled.err;
    EXPECT_THAT(filled.err, Not(HasSubstr("is visible")));
    EXPECT_LE(score("out.png"), 1.1 * score("clean.png"));
    // Else the score could pass anything.
    EXPECT_GT(score("a.png"), 1.1 * score("clean.png"));
}

INSTANTIATE_TEST_SUITE_P(
    Drawn, FilledTexture,
    testing::Values(Texture{"Pebbles", [](int x, int y) { return stones(x, y, 12); }},
                    Texture{"Cobbles", [](int x, int y) { return stones(x, y, 26); }},
                    Texture{"Bricks", bricks}, Texture{"Clouds", clouds}, Texture{"Water", water},
                    Texture{"Sand", sand}, Texture{"Grass", grass},
                    Texture{"Grain", [](int x, int y) { return 100 + 60 * hashed(x, y, 18); }},
                    Texture{"Stripes",
                            [](int x, int y) {
                                return 80 + 60.0 * ((x / 9) % 2) + 15 * ((x / 2 + y / 2) % 2) +
                                       8 * hashed(x, y, 19);
                            }},
                    Texture{"Wood",
                            [](int x, int y) {
                                const double rings = y + 9 * smooth(x, y, 90, 30, 20);
                                return 110 + 30 * std::sin(rings * 0.7) +
                                       18 * smooth(x, y, 40, 2, 21) + 6 * hashed(x, y, 22);
                            }},
                    Texture{"Weave",
                            [](int x, int y) {
                                return 120 + 35 * std::sin(x * 0.785) * std::sin(y * 0.785) +
                                       12 * hashed(x, y, 23);
                            }}),
    [](const auto& test) { return std::string(test.param.name); });

struct Meeting {
    const char* name;
    Tone above, below;
    double slope;  ///< of the border, y to x
};

void PrintTo(const Meeting& meeting, std::ostream* stream)
{
    *stream << meeting.name;
}

class FilledMeeting : public FillCorpus, public testing::WithParamInterface<Meeting> {};

// Away from the border itself every pixel has the colour of its own ground.
TEST_P(FilledMeeting, KeepsEachGroundOnItsSide)
{
    const Meeting& meeting = GetParam();
    const auto height = [&](int x, int y) { return y - 132 - meeting.slope * (x - 138); };
    const Painter above = painted(meeting.above, true), below = painted(meeting.below);
    paintCase([&](int x, int y) { return height(x, y) < 0 ? above(x, y) : below(x, y); }, kThing);
    const Outcome filled = fill("out.png");
    ASSERT_EQ(filled.code, 0) << filled.err;
    const LoadedPicture picture = load(in("out.png"));
    int wrong = 0, all = 0;
    for (int y = kThing.y1; y < kThing.y2; ++y) {
        for (int x = kThing.x1; x < kThing.x2; ++x) {
            if (std::abs(height(x, y)) < 12) continue;
            const bool isBlue = picture.at(x, y, 2) > picture.at(x, y, 0);
            wrong += isBlue != (height(x, y) < 0) ? 1 : 0;
            ++all;
        }
    }
    EXPECT_LE(wrong, all / 20);
}

INSTANTIATE_TEST_SUITE_P(Drawn, FilledMeeting,
                         testing::Values(Meeting{"SkyAndField", clouds, grass, 0.0},
                                         Meeting{"SeaAndSand", water, sand, 0.35},
                                         Meeting{"WallAndFloor", bricks, cobbles, 0.0}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(FillCorpus, ComesOutTheSameEveryTime)
{
    paintCase(painted(bricks), kThing);
    for (const char* threads : {"1", "1", "2", "7"}) {
        const std::string output = std::string(threads) + ".png";
        ASSERT_EQ(fill(output, {"--threads", threads}).code, 0);
        if (!first_) first_ = load(in(output));
        EXPECT_EQ(load(in(output)), *first_) << threads;
    }
}

// What is unique cannot be continued; the user is told, and the exit code stays 0.
TEST_F(FillCorpus, TellsWhereNothingFits)
{
    const Painter field = painted(grass);
    const auto wheel = [&](int x, int y) {
        const double distance = std::hypot(x - 138, y - 132);
        const double turn = std::atan2(y - 132, x - 138) * 6 / 3.14159265358979;
        if (distance > 64) return field(x, y);
        if (distance > 56 || std::abs(turn - std::round(turn)) < 0.16)
            return std::vector{20, 20, 30};
        return std::vector{235, 60 + int(distance), 20};
    };
    const auto sun = [&](int x, int y) {
        const double distance = std::hypot(x - 150, y - 120);
        if (distance > 70) return field(x, y);
        return std::vector{255 - int(distance), 230 - 2 * int(distance), 20 + int(distance) / 8};
    };
    for (const Painter& painter : {Painter(wheel), Painter(sun)}) {
        paintCase(painter, {108, 92, 170, 150});
        const Outcome filled = fill("out.png");
        EXPECT_EQ(filled.code, 0) << filled.err;
        EXPECT_THAT(filled.err, HasSubstr("even the best fill is visible"));
    }
}

}  // namespace
}  // namespace Tesseret::Command
