#pragma once

#include <algorithm>
#include <cmath>

#include "tests/command/RenderFixture.h"

namespace Tesseret::Command {

inline constexpr int kWidth = 200, kHeight = 160;

/// Pixels of a picture, y downwards; x2 and y2 are excluded.
struct Spot {
    int x1, y1, x2, y2;

    bool holds(int x, int y) const { return x >= x1 && x < x2 && y >= y1 && y < y2; }
    bool isNear(int x, int y, double distance) const
    {
        const int dx = std::max({x1 - x, x - (x2 - 1), 0});
        const int dy = std::max({y1 - y, y - (y2 - 1), 0});
        return std::hypot(dx, dy) <= distance;
    }
};

// The plug-in's scan comes upwards: kLow first.
inline constexpr Spot kLow{150, 120, 170, 140};
inline constexpr Spot kMiddle{30, 70, 60, 100};
inline constexpr Spot kHigh{140, 20, 165, 40};
inline constexpr Spot kHole{40, 80, 50, 90};    // in kMiddle
inline constexpr Spot kIsland{44, 84, 46, 86};  // in kHole

using Spots = std::vector<Spot>;

inline bool holds(const Spots& spots, int x, int y)
{
    return std::ranges::any_of(spots, [&](const Spot& spot) { return spot.holds(x, y); });
}

/// One channel, 255 in the spots and not in the holes.
inline Painter masks(Spots spots, Spots holes = {}, bool inverted = false)
{
    return [=](int x, int y) {
        const bool isMasked = holds(spots, x, y) && !holds(holes, x, y);
        return std::vector{isMasked != inverted ? 255 : 0};
    };
}

/// Colours with an alpha of their own.
inline Painter withAlpha(const Painter& colours, const Painter& alpha)
{
    return [=](int x, int y) {
        std::vector<int> channels = colours(x, y);
        channels.push_back(alpha(x, y).front());
        return channels;
    };
}

/// A picture of noise, filled through mattes.
class MatteFixture : public RenderFixture {
protected:
    MatteFixture() { paint(in("a.png"), kWidth, kHeight, noise(1)); }

    void paintMatte(const std::string& name, const Painter& painter) const
    {
        paint(in(name), kWidth, kHeight, painter);
    }

    /// Small blocks and a narrow path, so that a fill reaches no further than 16 pixels.
    Outcome fill(const std::string& source, const std::string& output,
                 CommandRun::Arguments more = {}) const
    {
        more.insert(more.end(),
                    {"blockSize=30", "overlap=8", "pathWidth=2", "edgeBlend=1", "--threads", "2"});
        Outcome outcome = render(source, output, more);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return outcome;
    }

    LoadedPicture filled(const CommandRun::Arguments& more,
                         const std::string& source = "a.png") const
    {
        fill(source, "out.png", more);
        return load(in("out.png"));
    }
};

}  // namespace Tesseret::Command
