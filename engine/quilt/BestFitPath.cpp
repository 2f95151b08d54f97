#include "engine/quilt/BestFitPath.h"

#include <algorithm>
#include <cstddef>

namespace Orvane::Engine {
namespace {

/// A map seen along the seam: line t is a row (vertical seam), or a column counted from the last
/// one (horizontal seam); s counts across.
struct Lines {
    float* first;
    std::ptrdiff_t along, across;
    float& at(int t, int s) const { return first[t * along + s * across]; }
};

Lines linesOf(const Map<Pixel32f>& map, SeamMode mode)
{
    // The map is only written where the caller owns it as a work map.
    auto* first = const_cast<float*>(map.pixelAt(0, 0));
    const auto rowFloats = map.stride() / static_cast<std::ptrdiff_t>(sizeof(float));
    if (mode == SeamMode::Vertical) return {first, rowFloats, 1};
    return {first + (map.width() - 1), -1, rowFloats};
}

struct Range {
    int begin, end;
    Range around(int s, int step) const
    {
        return {std::max(begin, s - step), std::min(end, s + step + 1)};
    }
};

/// The position of the smallest value of line t within a range, the first one of several.
int cheapest(const Lines& cost, int t, const Range& range)
{
    int best = range.begin;
    for (int s = range.begin + 1; s < range.end; ++s) {
        if (cost.at(t, s) < cost.at(t, best)) best = s;
    }
    return best;
}

Range allowedRange(int across, int margin)
{
    const int kept = std::clamp(margin, 0, (across - 1) / 2);
    return {kept, across - kept};
}

void accumulate(const Lines& error, const Lines& cost, int lines, const Range& allowed, int step)
{
    for (int s = allowed.begin; s < allowed.end; ++s) cost.at(0, s) = error.at(0, s);
    for (int t = 1; t < lines; ++t) {
        for (int s = allowed.begin; s < allowed.end; ++s) {
            const int from = cheapest(cost, t - 1, allowed.around(s, step));
            cost.at(t, s) = error.at(t, s) + cost.at(t - 1, from);  // exact: float sums
        }
    }
}

}  // namespace

void bestFitPath(const SeamSearch& search, const Map<Pixel32f>& error, Map<Pixel32f>& cost,
                 std::span<PixelVec2f> path, SeamMode mode)
{
    const bool vertical = mode == SeamMode::Vertical;
    const int lines = vertical ? error.height() : error.width();
    const auto entry = [&](int t, int s) {
        const auto along = static_cast<float>(vertical ? t : lines - 1 - t);
        const auto across = static_cast<float>(s);
        return vertical ? PixelVec2f{across, along} : PixelVec2f{along, across};
    };
    const auto put = [&](int t, int s) {
        path[static_cast<std::size_t>(vertical ? t : lines - 1 - t)] = entry(t, s);
    };
    if (cost.width() != error.width() || cost.height() != error.height()) {
        cost.setSize(error.width(), error.height());
        cost.allocate();
    }
    if (!error.isUsable() || !cost.isUsable()) {
        for (int t = 0; t < lines; ++t) put(t, 0);
        return;
    }
    const Lines errors = linesOf(error, mode);
    const Lines costs = linesOf(cost, mode);
    const Range allowed = allowedRange(vertical ? error.width() : error.height(), search.margin);
    accumulate(errors, costs, lines, allowed, search.step);
    int s = cheapest(costs, lines - 1, allowed);
    put(lines - 1, s);
    for (int t = lines - 2; t >= 0; --t) {
        s = cheapest(costs, t, allowed.around(s, search.step));
        put(t, s);
    }
}

}  // namespace Orvane::Engine
