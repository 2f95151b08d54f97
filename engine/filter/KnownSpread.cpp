#include "engine/filter/KnownSpread.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>

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

/// Columns that are decided together, and the size of the blocks in which their sums are made:
/// compilers work on a block at once. What lies behind the last column is summed as well.
constexpr int kGroup = 32;

std::size_t wholeGroups(int count)
{
    return static_cast<std::size_t>((count + kGroup - 1) / kGroup) * kGroup;
}

/// to[i] = the sum of from[i] and from[i + shift], up to a limit.
void addShifted(const unsigned char* __restrict from, int shift, unsigned char* __restrict to,
                int count, unsigned char limit)
{
    for (int begin = 0; begin < count; begin += kGroup) {
        for (int i = begin; i < begin + kGroup; ++i) {
            const auto sum = static_cast<unsigned char>(from[i] + from[i + shift]);
            to[i] = sum < limit ? sum : limit;
        }
    }
}

/// The same for the sums of to[i] and from[i].
void addTo(const unsigned char* __restrict from, unsigned char* __restrict to, int count,
           unsigned char limit)
{
    for (int begin = 0; begin < count; begin += kGroup) {
        for (int i = begin; i < begin + kGroup; ++i) {
            const auto sum = static_cast<unsigned char>(to[i] + from[i]);
            to[i] = sum < limit ? sum : limit;
        }
    }
}

void fillGroup(unsigned char* to, int count, unsigned char value)
{
    if (count == kGroup) {  // no call
        std::fill_n(to, kGroup, value);
    } else {
        std::fill_n(to, count, value);
    }
}

template <typename Count>
void addRow(const unsigned char* __restrict row, Count* __restrict counts, int count)
{
    for (int i = 0; i < count; ++i) counts[i] = static_cast<Count>(counts[i] + row[i]);
}

/// Adds a row to the counts, writes them up to a limit, and takes another row off them.
template <typename Count>
void stepCounts(const unsigned char* __restrict entering, const unsigned char* __restrict leaving,
                Count* __restrict counts, unsigned char* __restrict to, int count, Count limit)
{
    for (int i = 0; i < count; ++i) {
        const auto sum = static_cast<Count>(counts[i] + entering[i]);
        to[i] = static_cast<unsigned char>(sum < limit ? sum : limit);
        counts[i] = static_cast<Count>(sum - leaving[i]);
    }
}

/// The first of [begin, end) that is not 0, or `end`.
int firstNonzero(const unsigned char* bytes, int begin, int end)
{
    constexpr int kWord = sizeof(std::uint64_t);
    for (; begin + kWord <= end; begin += kWord) {
        std::uint64_t word;
        std::memcpy(&word, bytes + begin, kWord);
        if (word != 0) break;
    }
    while (begin < end && bytes[begin] == 0) ++begin;
    return begin;
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
    // A sum reads the block of another column behind the last one's.
    const auto room = wholeGroups(width + 2 * radius_) + wholeGroups(2 * radius_ + 1) + kGroup;
    columns_.assign(room, 0);
    for (auto* sums : {&sums_, &wider_, &boxes_}) sums->resize(room);
    if (count <= 0) {
        for (int y = rowBegin; y < rowEnd; ++y) spreadRow(width, rowOf(after, part.x0, y));
        return;
    }
    counts.assign(static_cast<std::size_t>(count), 0);
    nothing_.resize(counts.size(), 0);
    const auto known = [&](int y) {
        const bool isReadable = y >= readable.y0 && y < readable.y1;
        return isReadable ? rowOf(before, x0, y) : nothing_.data();
    };
    for (int y = std::max(rowBegin - radius_, readable.y0);
         y < std::min(rowBegin + radius_, readable.y1); ++y) {
        addRow(known(y), counts.data(), count);
    }
    for (int y = rowBegin; y < rowEnd; ++y) {
        stepCounts(known(y + radius_), known(y - radius_), counts.data(),
                   columns_.data() + (x0 - (part.x0 - radius_)), count,
                   static_cast<Count>(enough_));
        spreadRow(width, rowOf(after, part.x0, y));
    }
}

/// Known and unknown pixels lie in large areas. So a row is decided group by group where possible:
/// all boxes of a group have some columns in common.
void KnownSpread::spreadRow(int width, unsigned char* to)
{
    const auto limit = static_cast<unsigned char>(enough_);
    const unsigned char* columns = columns_.data();
    const int boxEnd = 2 * radius_ + 1;
    int undecided = 0;  // from here on
    int nonzero = 0;    // the first one that is not left of the group
    for (int begin = 0; begin < width; begin += kGroup) {
        const int end = std::min(begin + kGroup, width);
        // Two of the columns [end - 1, begin + boxEnd) that all boxes hold.
        const bool isEnough = end - 1 < begin + boxEnd &&
                              (columns[end - 1] >= limit || columns[begin + boxEnd - 1] >= limit);
        if (!isEnough) {
            if (nonzero < begin) nonzero = begin;
            nonzero = firstNonzero(columns, nonzero, end - 1 + boxEnd);
        }
        const bool isNothing = !isEnough && nonzero == end - 1 + boxEnd;
        if (!isEnough && !isNothing) continue;
        sumBoxes(undecided, begin, to);
        fillGroup(to + begin, end - begin, isEnough ? 1 : 0);
        undecided = end;
    }
    sumBoxes(undecided, width, to);
}

/// Sums the columns of each box of [begin, end).
void KnownSpread::sumBoxes(int begin, int end, unsigned char* to)
{
    // Where few columns are undecided, the values of one sum after the other are still being stored
    // when the next one reads them.
    constexpr int kFew = 4 * kGroup;
    if (end - begin > kFew) {
        sumByDoubling(begin, end, to);
    } else if (begin < end) {
        sumInTurn(begin, end, to);
    }
}

void KnownSpread::sumInTurn(int begin, int end, unsigned char* to)
{
    const unsigned char* leaving = columns_.data() + begin;
    const unsigned char* entering = leaving + 2 * radius_ + 1;
    int sum = std::accumulate(leaving, entering, 0);
    for (int x = begin; x < end; ++x) {
        to[x] = sum >= enough_ ? 1 : 0;
        sum += *entering++ - *leaving++;
    }
}

/// By sums over 1, 2, 4 ... columns, of which a box is made up.
void KnownSpread::sumByDoubling(int begin, int end, unsigned char* to)
{
    const int width = end - begin;
    const auto limit = static_cast<unsigned char>(enough_);
    const int box = 2 * radius_ + 1;
    int length = width + 2 * radius_;
    const unsigned char* sums = columns_.data() + begin;
    // A box has an odd number of columns.
    std::copy_n(sums, wholeGroups(width), boxes_.data());
    int done = 1;
    for (int step = 1; 2 * step <= box; step *= 2) {
        length -= step;
        addShifted(sums, step, wider_.data(), length, limit);
        sums_.swap(wider_);
        sums = sums_.data();
        if ((box & (2 * step)) == 0) continue;
        addTo(sums + done, boxes_.data(), width, limit);
        done += 2 * step;
    }
    for (int i = 0; i < width; ++i) {
        to[begin + i] = boxes_[static_cast<std::size_t>(i)] >= limit ? 1 : 0;
    }
}

}  // namespace Orvane::Engine
