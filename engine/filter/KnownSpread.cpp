#include "engine/filter/KnownSpread.h"

#include <algorithm>
#include <cmath>
#include <limits>
namespace Orvane::Engine {
namespace {

/// The blur's box is limited to this radius.
constexpr int kMaxRadius = 100'000;

/// The pixels that make a share of 1 / (radius + 1)^2 of the box: 1, 3, 3, and then 4.
int enoughFor(int radius)
{
    const double side = 2.0 * std::min(radius, kMaxRadius) + 1.0;
    const double k = radius + 1.0;
    return static_cast<int>(std::ceil(side * side / (k * k)));
}

unsigned char* rowOf(Map<Pixel8>& map, int x, int y)
{
    return map.pixelAt(x - map.xAxis().origin, y - map.yAxis().origin);
}

const unsigned char* rowOf(const Map<Pixel8>& map, int x, int y)
{
    return map.pixelAt(x - map.xAxis().origin, y - map.yAxis().origin);
}

/// to[i] = the sum of from[i] and from[i + shift], up to a limit; the same for each sum in `to`.
void addShifted(const unsigned char* __restrict from, int shift, unsigned char* __restrict to,
                int count, unsigned char limit)
{
    for (int i = 0; i < count; ++i) {
        const auto sum = static_cast<unsigned char>(from[i] + from[i + shift]);
        to[i] = sum < limit ? sum : limit;
    }
}

void addTo(const unsigned char* __restrict from, unsigned char* __restrict to, int count,
           unsigned char limit)
{
    for (int i = 0; i < count; ++i) {
        const auto sum = static_cast<unsigned char>(to[i] + from[i]);
        to[i] = sum < limit ? sum : limit;
    }
}

template <typename Count>
void addRow(const unsigned char* __restrict row, Count* __restrict counts, int count)
{
    for (int i = 0; i < count; ++i) counts[i] = static_cast<Count>(counts[i] + row[i]);
}

template <typename Count>
void subtractRow(const unsigned char* __restrict row, Count* __restrict counts, int count)
{
    for (int i = 0; i < count; ++i) counts[i] = static_cast<Count>(counts[i] - row[i]);
}

template <typename Count>
void limitCounts(const Count* __restrict counts, unsigned char* __restrict to, int count,
                 Count limit)
{
    for (int i = 0; i < count; ++i) {
        to[i] = static_cast<unsigned char>(counts[i] < limit ? counts[i] : limit);
    }
}

}  // namespace

KnownSpread::KnownSpread(int radius)
    : radius_(std::min(radius, kMaxRadius)), enough_(enoughFor(radius))
{}

void KnownSpread::run(const Map<Pixel8>& before, const Region& readable, Map<Pixel8>& after,
                      const Region& part, int rowBegin, int rowEnd)
{
    if (2 * radius_ + 1 <= std::numeric_limits<std::uint8_t>::max()) {
        countRows(before, readable, after, part, rowBegin, rowEnd, counts_);
    } else {
        countRows(before, readable, after, part, rowBegin, rowEnd, wideCounts_);
    }
}

template <typename Count>
void KnownSpread::countRows(const Map<Pixel8>& before, const Region& readable, Map<Pixel8>& after,
                            const Region& part, int rowBegin, int rowEnd,
                            std::vector<Count>& counts)
{
    const int width = part.x1 - part.x0;
    // The columns that some box of the part reads.
    const int x0 = std::max(part.x0 - radius_, readable.x0);
    const int x1 = std::min(part.x1 + radius_, readable.x1);
    const int count = x1 - x0;
    columns_.assign(static_cast<std::size_t>(width + 2 * radius_), 0);
    if (count <= 0) {
        for (int y = rowBegin; y < rowEnd; ++y) spreadRow(width, rowOf(after, part.x0, y));
        return;
    }
    counts.assign(static_cast<std::size_t>(count), 0);
    const auto add = [&](int y) {
        if (y >= readable.y0 && y < readable.y1) addRow(rowOf(before, x0, y), counts.data(), count);
    };
    for (int y = std::max(rowBegin - radius_, readable.y0);
         y < std::min(rowBegin + radius_, readable.y1); ++y) {
        add(y);
    }
    for (int y = rowBegin; y < rowEnd; ++y) {
        add(y + radius_);
        limitCounts(counts.data(), columns_.data() + (x0 - (part.x0 - radius_)), count,
                    static_cast<Count>(enough_));
        spreadRow(width, rowOf(after, part.x0, y));
        const int leaving = y - radius_;
        if (leaving >= readable.y0 && leaving < readable.y1) {
            subtractRow(rowOf(before, x0, leaving), counts.data(), count);
        }
    }
}

/// Sums the columns of each box, by sums over 1, 2, 4 ... columns, of which a box is made up.
void KnownSpread::spreadRow(int width, unsigned char* to)
{
    const auto limit = static_cast<unsigned char>(enough_);
    const int box = 2 * radius_ + 1;
    int length = width + 2 * radius_;
    sums_.assign(columns_.begin(), columns_.end());
    wider_.resize(sums_.size());
    // A box has an odd number of columns.
    std::copy_n(sums_.data(), width, to);
    int done = 1;
    for (int step = 1; 2 * step <= box; step *= 2) {
        length -= step;
        addShifted(sums_.data(), step, wider_.data(), length, limit);
        sums_.swap(wider_);
        if ((box & (2 * step)) == 0) continue;
        addTo(sums_.data() + done, to, width, limit);
        done += 2 * step;
    }
    for (int i = 0; i < width; ++i) to[i] = to[i] >= limit ? 1 : 0;
}

}  // namespace Orvane::Engine
