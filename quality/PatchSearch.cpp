#include "quality/PatchSearch.h"

#include <algorithm>

namespace Tesseret::Quality {
namespace {

/// Marsaglia's "Xorshift RNGs", 2003.
class Random {
public:
    /// From 0 to n - 1; n is at most 2^15.
    int below(int n)
    {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 17;
        state_ ^= state_ << 5;
        return int((std::uint64_t(state_) * std::uint64_t(n)) >> 32);
    }

private:
    std::uint32_t state_ = 2463534242u;
};

class Search {
public:
    Search(const QueryGrid& queries, const Reference& reference, int level)
        : queries_(queries),
          reference_(reference),
          level_(level),
          queryRow_(queries.pixels->rowValues(level)),
          referenceRow_(reference.pixels->rowValues(level)),
          matches_(queries.size())
    {}

    void start(const std::vector<Match>& start)
    {
        for (int row = 0; row < queries_.rows; ++row) {
            for (int column = 0; column < queries_.columns; ++column) {
                if (!select(column, row)) continue;
                if (!start.empty()) {
                    const Match& match = start[at_];
                    if (match.difference != Match::kNone) test(match.x, match.y);
                } else if (reference_.copies != nullptr) {
                    if (const auto copy = reference_.copies->find(*queries_.pixels, x_, y_)) {
                        test(copy->x, copy->y);
                    }
                }
                for (int tries = 0; tries < 8 && matches_[at_].difference == Match::kNone;
                     ++tries) {
                    test(random_.below(reference_.pixels->width()),
                         random_.below(reference_.pixels->height()));
                }
            }
        }
    }

    /// One pass over the grid; every second one runs backwards.
    void improve(bool backwards)
    {
        const int toward = backwards ? 1 : -1;
        for (int i = 0; i < queries_.rows; ++i) {
            const int row = backwards ? queries_.rows - 1 - i : i;
            for (int j = 0; j < queries_.columns; ++j) {
                const int column = backwards ? queries_.columns - 1 - j : j;
                if (!select(column, row)) continue;
                spread(column + toward, row, -toward * queries_.step, 0);
                spread(column, row + toward, 0, -toward * queries_.step);
                if (matches_[at_].difference > 0) testRound();
            }
        }
    }

    std::vector<Match> take() { return std::move(matches_); }

private:
    bool select(int column, int row)
    {
        at_ = index(column, row);
        if (queries_.wanted[at_] == 0) return false;
        x_ = queries_.x + column * queries_.step;
        y_ = queries_.y + row * queries_.step;
        patch_ = queries_.pixels->sample(x_, y_, level_);
        return true;
    }

    std::size_t index(int column, int row) const
    {
        return std::size_t(row) * std::size_t(queries_.columns) + std::size_t(column);
    }

    void test(int x, int y)
    {
        if (!reference_.has(x, y, level_)) return;
        Match& match = matches_[at_];
        const std::int32_t difference =
            patchDifference(patch_, queryRow_, reference_.pixels->sample(x, y, level_),
                            referenceRow_, match.difference);
        if (difference < match.difference) match = {difference, x, y};
    }

    /// Tries the neighbour's match, moved as far as this query is from the neighbour.
    void spread(int column, int row, int dx, int dy)
    {
        if (column < 0 || row < 0 || column >= queries_.columns || row >= queries_.rows) return;
        const Match neighbour = matches_[index(column, row)];
        if (neighbour.difference == Match::kNone) return;
        const int x = neighbour.x + dx, y = neighbour.y + dy;
        if (x != matches_[at_].x || y != matches_[at_].y) test(x, y);
    }

    void testRound()
    {
        const int largest = std::max(reference_.pixels->width(), reference_.pixels->height());
        for (int radius = std::min(largest, 1 << 14); radius >= 1; radius /= 4) {
            const Match& match = matches_[at_];
            test(match.x - radius + random_.below(2 * radius + 1),
                 match.y - radius + random_.below(2 * radius + 1));
        }
    }

    const QueryGrid& queries_;
    const Reference& reference_;
    const int level_;
    const std::size_t queryRow_, referenceRow_;
    Random random_;
    std::vector<Match> matches_;
    // The query in work.
    std::size_t at_ = 0;
    int x_ = 0, y_ = 0;
    const std::int16_t* patch_ = nullptr;
};

}  // namespace

bool Reference::has(int x, int y, int level) const
{
    if (x < 0 || y < 0 || x >= pixels->width() || y >= pixels->height()) return false;
    const std::size_t at = std::size_t(y) * std::size_t(pixels->width()) + std::size_t(x);
    if ((*levels)[at] <= level) return false;
    const int side = patchSide(level);
    return x >= except.x2 || y >= except.y2 || x + side <= except.x1 || y + side <= except.y1;
}

std::vector<Match> searchPatches(const QueryGrid& queries, const Reference& reference, int level,
                                 const std::vector<Match>& start, int rounds)
{
    Search search(queries, reference, level);
    search.start(start);
    for (int round = 0; round < rounds; ++round) search.improve(round % 2 != 0);
    return search.take();
}

}  // namespace Tesseret::Quality
