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
constexpr int kDeep = 28;  ///< beyond what an edge blend of 5 softens

/// The difference between two rectangles, upright or level.
float difference(const PatchPyramid& pixels, int ax, int ay, int bx, int by, bool upright)
{
    std::array<std::int32_t, 3> sum{};
    for (int along = 0; along < kLong; along += kThick) {
        const int dx = upright ? 0 : along, dy = upright ? along : 0;
        const std::int16_t* a = pixels.sample(ax + dx, ay + dy, kLevel);
        const std::int16_t* b = pixels.sample(bx + dx, by + dy, kLevel);
        for (std::size_t c = 0; c < 3; ++c) sum[c] += a[c] - b[c];
    }
    float squares = 0;
    for (const std::int32_t s : sum) squares += float(s) * float(s);
    return std::sqrt(squares / 3) / (kLong / kThick);
}

/// Whether a rectangle lies in the window and most of it changed.
bool hasChanged(const PixelSums& changed, int x, int y, int width, int height)
{
    if (x < 0 || y < 0 || x + width > changed.width() || y + height > changed.height())
        return false;
    return 4 * changed.sum(x, y, x + width, y + height) >= 3 * width * height;
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
                const int left = region.window.x1, low = region.window.y1;
                into->push_back(
                    difference(*region.pixels, left + ax, low + ay, left + x, low + y, upright));
                if (into != &samples.rim) continue;
                const bool isSecond = second > first;  // what changed
                const int deeper = isSecond ? kDeep : -kDeep;
                const int outX = isSecond ? ax : x, outY = isSecond ? ay : y;
                const int inX = outX + (upright ? deeper : 0), inY = outY + (upright ? 0 : deeper);
                if (!hasChanged(changed, inX, inY, right, up)) continue;
                samples.across.push_back(difference(*region.pixels, left + outX, low + outY,
                                                    left + inX, low + inY, upright));
            }
        }
    }
    return samples;
}

}  // namespace Tesseret::Quality
