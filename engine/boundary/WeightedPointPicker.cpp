#include "engine/boundary/WeightedPointPicker.h"

#include <algorithm>
#include <cmath>

#include "engine/map/MapRow.h"

namespace Orvane::Engine {
namespace {

/// Integer noise: a value in (0, 1] for each seed.
class Noise {
public:
    explicit Noise(std::uint32_t seed) : seed_(seed) {}

    double next()
    {
        // exact: unsigned 32-bit arithmetic that wraps around, then double. r has 31 bits and the
        // float constant is 2^-30, so no step in double rounds: the value is 1 - r / 2^31. Floats
        // would round the largest r up and return 0.
        const std::uint32_t n = (seed_ << 13) ^ seed_;
        const std::uint32_t r = (n * (n * n * 15731u + 789221u) + 0xD208DD0Du) & 0x7FFFFFFFu;
        seed_ += 100;
        const double fraction = r * static_cast<double>(9.313226e-10f);
        return ((1.0 - fraction) + 1.0) * 0.5;
    }

private:
    std::uint32_t seed_;
};

/// The sum with a weight added a number of times, one after the other. Most weights of a mask are 0
/// or M, in long runs: where no addition rounds, one does for all.
double addedTo(double sum, float weight, std::ptrdiff_t times)
{
    if (weight == 0.0f) return sum;
    constexpr double kExact = 9007199254740992.0;  // 2^53
    const double w = weight, all = w * static_cast<double>(times);
    const auto isWhole = [](double v) { return v == std::trunc(v); };
    if (isWhole(w) && isWhole(sum) && sum + all < kExact) return sum + all;
    for (std::ptrdiff_t i = 0; i < times; ++i) sum += w;
    return sum;
}

/// The first value of a range that is not 0. Whole groups first, which compilers compare at once.
template <typename Iterator>
Iterator firstNonzero(Iterator begin, Iterator end)
{
    constexpr std::ptrdiff_t kGroup = 16;
    for (; end - begin >= kGroup; begin += kGroup) {
        int others = 0;
        for (std::ptrdiff_t i = 0; i < kGroup; ++i) others |= begin[i] != 0.0f ? 1 : 0;
        if (others != 0) break;
    }
    while (begin != end && *begin == 0.0f) ++begin;
    return begin;
}

}  // namespace

void WeightedPointPicker::setNumPoints(int count)
{
    points_.assign(static_cast<std::size_t>(std::max(count, 0)), std::nullopt);
}

std::optional<PixelVec2f> WeightedPointPicker::getPoint(int i) const
{
    const auto index = static_cast<std::size_t>(i);  // a negative i is beyond the last point
    return index < points_.size() ? points_[index] : PixelVec2f{0.0f, 0.0f};
}

void WeightedPointPicker::process(const Map<Pixel32f>& map)
{
    std::fill(points_.begin(), points_.end(), std::nullopt);
    run("Sampler", nullptr, &map);
}

/// The region's values in a row: in place, or as a copy where some need edge handling.
std::span<const float> WeightedPointPicker::valuesOf(int y, std::vector<float>& copy) const
{
    const int count = region().x1 - region().x0;
    const auto size = static_cast<std::size_t>(count);
    const RowReader row(target(), y);
    if (const float* span = row.span(region().x0, count)) return {span, size};
    copy.resize(size);
    for (int i = 0; i < count; ++i) copy[static_cast<std::size_t>(i)] = row[region().x0 + i];
    return copy;
}

/// The sum with the weights of some values added, in order.
double WeightedPointPicker::sumWith(double sum, std::span<const float> values) const
{
    for (auto run = values.begin(); run != values.end();) {
        const float value = *run;
        if (value == 0.0f && low_ == 0.0f) {  // most of a mask has no weight
            run = firstNonzero(run, values.end());
            continue;
        }
        const auto end = std::find_if(run, values.end(), [value](float v) { return v != value; });
        const auto next = end == run ? run + 1 : end;  // NaN differs from itself
        sum = addedTo(sum, weight(value), next - run);
        run = next;
    }
    return sum;
}

float WeightedPointPicker::weight(float value) const
{
    // exact: float difference, float product. The comparison sends NaN to 0.
    const float above = value - low_;
    const float scaled = above * scale_;
    return scaled > 0.0f ? std::min(scaled, weightCap_) : 0.0f;
}

void WeightedPointPicker::begin()
{
    // exact: float difference, float quotient.
    const float range = high_ - low_;
    scale_ = high_ == low_ ? 0.0f : weightCap_ / range;
    allRows_ = {region().y0, region().y1};
    if (!hasExplicitRegion()) {
        const Region whole = target().extent();
        allRows_ = {whole.y0, whole.y1};
    }
    // A thread that has rows has an index below the number of rows.
    const int rows = std::max(allRows_.end - allRows_.begin, 0);
    partialSums_.assign(static_cast<std::size_t>(rows), 0.0);
}

void WeightedPointPicker::processPass()
{
    RowRange rows = allRows_;
    threadRange(rows.begin, rows.end);
    if (rows.isEmpty()) return;
    std::vector<float> copy;
    double sum = 0.0;
    const int last = std::min(rows.end, region().y1);
    for (int y = std::max(rows.begin, region().y0); y < last; ++y) {
        sum = sumWith(sum, valuesOf(y, copy));
    }
    partialSums_[static_cast<std::size_t>(threadIndex())] = sum;
}

void WeightedPointPicker::end()
{
    double total = 0.0;
    for (const double partialSum : partialSums_) total += partialSum;
    if (total == 0.0) return;  // nothing to draw from, or the pass did not run

    Noise noise(seed_);
    std::vector<double> targets(points_.size());
    for (double& target : targets) target = noise.next() * total;
    std::sort(targets.begin(), targets.end());

    const std::vector<int> rows = matchRows(targets);
    for (std::size_t k = 0; k < rows.size(); ++k) points_[k] = drawInRow(rows[k], noise.next());
}

/// The row in which the running weight reaches each target, at most one target for each pixel. The
/// last targets may have none.
std::vector<int> WeightedPointPicker::matchRows(const std::vector<double>& targets) const
{
    std::vector<int> rows;
    std::vector<float> copy;
    double sum = 0.0;  // exact: float weights added in double, in scan order
    for (int y = region().y0; y < region().y1; ++y) {
        const std::span<const float> values = valuesOf(y, copy);
        if (rows.size() == targets.size()) return rows;
        // Sums never fall: a target that the row's end does not reach is not in the row.
        const double rowEnd = sumWith(sum, values);
        if (rowEnd < targets[rows.size()]) {
            sum = rowEnd;
            continue;
        }
        for (const float value : values) {
            if (rows.size() == targets.size()) return rows;
            sum = addedTo(sum, weight(value), 1);
            if (targets[rows.size()] <= sum) rows.push_back(y);
        }
    }
    return rows;
}

std::optional<PixelVec2f> WeightedPointPicker::drawInRow(int y, double noise) const
{
    const RowReader row(target(), y);
    // exact: the row's weight is a double sum, the running weight a float sum, both from the left;
    // they are compared in double.
    double total = 0.0;
    for (int x = region().x0; x < region().x1; ++x) total += static_cast<double>(weight(row[x]));
    const double drawn = noise * total;
    float running = 0.0f;
    for (int x = region().x0; x < region().x1; ++x) {
        running += weight(row[x]);
        if (drawn < static_cast<double>(running)) {
            return PixelVec2f{static_cast<float>(x), static_cast<float>(y)};
        }
    }
    return std::nullopt;
}

}  // namespace Orvane::Engine
