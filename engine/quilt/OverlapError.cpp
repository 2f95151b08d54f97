#include "engine/quilt/OverlapError.h"

#include "engine/map/MapRow.h"
#include "engine/map/PixelTraits.h"

namespace Orvane::Engine {
namespace {

/// d to the eighth.
constexpr double eighthPower(float d)
{
    // exact: the square of a float is exact in double; the fourth and the eighth power round once
    // each, on every machine alike, which a library's pow does not promise.
    const double second = static_cast<double>(d) * static_cast<double>(d);
    const double fourth = second * second;
    return fourth * fourth;
}

template <typename Pixel>
float pixelError(const Pixel& a, const Pixel& b)
{
    // exact: the terms are added in double in the order B, G, R, and the sum is rounded to a float.
    using Traits = PixelTraits<Pixel>;
    double sum = eighthPower(Traits::difference(a.b, b.b));
    sum += eighthPower(Traits::difference(a.g, b.g));
    sum += eighthPower(Traits::difference(a.r, b.r));
    return static_cast<float>(sum);
}

/// Writes the errors of `count` pixels and returns them added up from left to right.
template <typename A, typename B, typename Counts>
float errorsOfRow(const A& a, const B& b, const Counts& counts, float* error, int count, float sum)
{
    for (int i = 0; i < count; ++i) {
        const float e = counts(i) ? pixelError(a[i], b[i]) : 0.0f;
        error[i] = e;
        sum += e;
    }
    return sum;
}

/// Reads a row from a given x on.
template <typename Pixel>
struct ShiftedRow {
    RowReader<Pixel> row;
    int x;
    Pixel operator[](int i) const { return row[x + i]; }
};

}  // namespace

template <typename Pixel>
float OverlapError<Pixel>::measure(Map<Pixel32f>& error)
{
    threadSums_.clear();
    this->process(&error);
    float sum = 0.0f;
    for (const float threadSum : threadSums_) sum += threadSum;
    return sum;
}

template <typename Pixel>
void OverlapError<Pixel>::beginPass()
{
    // A thread with a row to do has an index below the number of rows.
    threadSums_.assign(static_cast<std::size_t>(this->region().y1 - this->region().y0), 0.0f);
}

template <typename Pixel>
void OverlapError<Pixel>::processPass()
{
    const RowRange rows = this->threadRows();
    if (rows.isEmpty()) return;
    float sum = 0.0f;
    for (int y = rows.begin; y < rows.end; ++y) sum = measureRow(y, sum);
    threadSums_[static_cast<std::size_t>(this->threadIndex())] = sum;
}

/// One row of the error map, added to a running sum.
template <typename Pixel>
float OverlapError<Pixel>::measureRow(int y, float sum)
{
    const Region& region = this->region();
    const int count = region.x1 - region.x0;
    float* error = RowWriter(this->target(), y).from(region.x0);
    const ShiftedRow<Pixel> a{RowReader(*a_.map, a_.y + y), a_.x + region.x0};
    const ShiftedRow<Pixel> b{RowReader(*b_.map, b_.y + y), b_.x + region.x0};
    if (weight_.map != nullptr) {
        const ShiftedRow<Pixel32f> weight{RowReader(*weight_.map, weight_.y + y),
                                          weight_.x + region.x0};
        const auto known = [&weight](int i) { return weight[i] > 0.0f; };
        return errorsOfRow(a, b, known, error, count, sum);
    }
    const auto all = [](int) { return true; };
    const Pixel* aSpan = a.row.span(a.x, count);
    const Pixel* bSpan = b.row.span(b.x, count);
    if (aSpan != nullptr && bSpan != nullptr) {
        return errorsOfRow(aSpan, bSpan, all, error, count, sum);
    }
    return errorsOfRow(a, b, all, error, count, sum);
}

template class OverlapError<PixelRGBA8>;
template class OverlapError<PixelRGBA16>;
template class OverlapError<PixelRGBAf>;

}  // namespace Orvane::Engine
