#include "quality/Steps.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Tesseret::Quality {
namespace {

constexpr int kLevel = 3;            ///< squares of 8 pixels
constexpr int kThick = 1 << kLevel;  ///< of a rectangle, across the edge
constexpr int kLong = 4 * kThick;    ///< along the edge
constexpr int kStep = 4;

/// The difference across an edge from (x, y) of the pixels on, upright or level.
float step(const PatchPyramid& pixels, int x, int y, bool upright)
{
    std::array<std::int32_t, 3> sum{};
    for (int along = 0; along < kLong; along += kThick) {
        const int ax = upright ? x - kThick : x + along, ay = upright ? y + along : y - kThick;
        const int bx = upright ? x : x + along, by = upright ? y + along : y;
        const std::int16_t* a = pixels.sample(ax, ay, kLevel);
        const std::int16_t* b = pixels.sample(bx, by, kLevel);
        for (std::size_t c = 0; c < 3; ++c) sum[c] += a[c] - b[c];
    }
    float squares = 0;
    for (const std::int32_t s : sum) squares += float(s) * float(s);
    constexpr int kPairs = kLong / kThick;
    return std::sqrt(squares / 3) / float(kPairs);
}

}  // namespace

StepSamples measureSteps(const Region& region)
{
    StepSamples samples;
    const PixelSums& changed = region.changed;
    constexpr int kArea = kThick * kLong;
    for (const bool upright : {true, false}) {
        const int right = upright ? kThick : kLong, up = upright ? kLong : kThick;
        for (int y = upright ? 0 : kThick; y + up <= changed.height(); y += kStep) {
            for (int x = upright ? kThick : 0; x + right <= changed.width(); x += kStep) {
                const int second = changed.sum(x, y, x + right, y + up);
                const int ax = upright ? x - kThick : x, ay = upright ? y : y - kThick;
                const int first = changed.sum(ax, ay, ax + right, ay + up);
                const int more = std::max(first, second), less = std::min(first, second);
                if (4 * more < 3 * kArea) continue;
                if (region.ignored && region.ignored->sum(ax, ay, x + right, y + up) != 0) continue;
                std::vector<float>* into = 4 * less <= kArea       ? &samples.rim
                                           : 4 * less >= 3 * kArea ? &samples.inside
                                                                   : nullptr;
                if (into == nullptr) continue;
                into->push_back(
                    step(*region.pixels, region.window.x1 + x, region.window.y1 + y, upright));
            }
        }
    }
    return samples;
}

}  // namespace Tesseret::Quality
