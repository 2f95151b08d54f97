#include "engine/quilt/BestFitPath.h"

#include <algorithm>

#include "engine/kernels/Kernels.h"

namespace Orvane::Engine {
namespace {

struct Range {
    int begin, end;
    Range around(int s, int step) const
    {
        return {std::max(begin, s - step), std::min(end, s + step + 1)};
    }
};

/// The position of the smallest cost within a range; ties go to the first.
int cheapest(const float* costs, const Range& range)
{
    int best = range.begin;
    for (int s = range.begin + 1; s < range.end; ++s) {
        if (costs[s] < costs[best]) best = s;
    }
    return best;
}

Range allowedRange(int across, int margin)
{
    const int kept = std::clamp(margin, 0, (across - 1) / 2);
    return {kept, across - kept};
}

/// Repeats the ends of a line beyond it, so that a minimum near an end needs no bounds test: the
/// repeated cost ties with the original.
void padLine(float* line, const Range& range, int step)
{
    std::fill_n(line + range.begin - step, step, line[range.begin]);
    std::fill_n(line + range.end, step, line[range.end - 1]);
}

void accumulate(SeamStrip& strip, const Range& allowed, int step)
{
    const auto& kernels = Kernels::kernels().plane;
    const int count = allowed.end - allowed.begin;
    std::copy_n(strip.errors(0) + allowed.begin, count, strip.costs(0) + allowed.begin);
    padLine(strip.costs(0), allowed, step);
    for (int t = 1; t < strip.lines(); ++t) {
        kernels.seamLine(strip.errors(t) + allowed.begin, strip.costs(t - 1) + allowed.begin,
                         strip.costs(t) + allowed.begin, count, step);
        padLine(strip.costs(t), allowed, step);
    }
}

}  // namespace

void SeamStrip::shape(int lines, int across)
{
    lines_ = lines;
    across_ = across;
    stride_ = across + 2 * Kernels::kSeamPadding;
    const auto size = static_cast<std::size_t>(stride_ * lines);
    if (errors_.size() < size) {
        errors_.resize(size);
        costs_.resize(size);
    }
    line_ = errors_.data() + Kernels::kSeamPadding;
}

void SeamStrip::setColumns(const Rows<float>& rows)
{
    // A few columns of every row at a time, so that both sides stay in the cache.
    constexpr int kColumns = 16;
    for (int first = 0; first < lines_; first += kColumns) {
        const int end = std::min(first + kColumns, lines_);
        for (int s = 0; s < across_; ++s) {
            const float* row = rows.at(s);
            for (int column = first; column < end; ++column) {
                errors(lines_ - 1 - column)[s] = row[column];
            }
        }
    }
}

void bestFitPath(const SeamSearch& search, SeamStrip& strip, std::span<int> path)
{
    const int lines = strip.lines();
    const Range allowed = allowedRange(strip.across(), search.margin);
    const int step = std::min(search.step, Kernels::kMaxSeamStep);
    accumulate(strip, allowed, step);
    int s = cheapest(strip.costs(lines - 1), allowed);
    for (int t = lines - 1; t >= 0; --t) {
        if (t < lines - 1) s = cheapest(strip.costs(t), allowed.around(s, step));
        path[static_cast<std::size_t>(t)] = s;
    }
}

}  // namespace Orvane::Engine
