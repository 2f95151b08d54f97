#include "engine/quilt/OverlapError.h"

#include <algorithm>
#include <limits>

#include "libraries/Processor/ovMultiProcessor.h"

namespace Orvane::Engine {
namespace {

constexpr double kRounding = 1.0 / (1 << 24);
constexpr double kUnderflow = 1e-36;  ///< of one pixel, even if the host flushes to zero

double relativeError(std::int64_t pixels)
{
    return (2.0 * static_cast<double>(pixels) + 128.0) * kRounding;
}

}  // namespace

template <typename Pixel>
float OverlapError<Pixel>::exact(const Strip<Pixel>& strip)
{
    if (strip.isEmpty()) return 0.0f;
    line_.resize(static_cast<std::size_t>(strip.width));
    const auto& kernels = Kernels::pixelKernels<Pixel>(Kernels::kernels());
    float sum = 0.0f;
    for (int thread = 0; thread < threads_; ++thread) {
        RowRange rows{0, strip.allRows > 0 ? strip.allRows : strip.height};
        splitRange(rows.begin, rows.end, thread, threads_);
        if (rows.isEmpty()) break;
        rows.begin = std::max(rows.begin - strip.firstRow, 0);
        rows.end = std::min(rows.end - strip.firstRow, strip.height);
        // exact: a float sum for each thread's rows, row by row from left to right; these sums are
        // added in thread order.
        float threadSum = 0.0f;
        for (int y = rows.begin; y < rows.end; ++y) {
            const Rows<float> weights =
                strip.weights.first != nullptr ? strip.weights.from(0, y) : Rows<float>{};
            kernels.errorMap(strip.a.from(0, y), strip.b.from(0, y), weights, strip.width, 1,
                             line_.data(), strip.width);
            for (const float error : line_) threadSum += error;
        }
        sum += threadSum;
    }
    return sum;
}

template <typename Pixel>
float OverlapError<Pixel>::rough(const Strip<Pixel>& strip, float limit) const
{
    if (strip.isEmpty()) return 0.0f;
    const auto& kernels = Kernels::pixelKernels<Pixel>(Kernels::kernels());
    return kernels.roughError(strip.a, strip.b, strip.weights, strip.width, strip.height, limit);
}

ErrorBounds boundsOf(double rough, std::int64_t pixels)
{
    const double relative = relativeError(pixels);
    const double absolute = static_cast<double>(pixels) * kUnderflow;
    return {rough * (1.0 - relative) - absolute, rough * (1.0 + relative) + absolute};
}

float roughLimit(double upper, std::int64_t pixels)
{
    const double absolute = static_cast<double>(pixels) * kUnderflow;
    // The last factor makes up for rounding down to a float.
    const double limit = (upper + absolute) / (1.0 - relativeError(pixels)) * (1.0 + 1e-6);
    constexpr float kMaxFloat = std::numeric_limits<float>::max();
    return limit < static_cast<double>(kMaxFloat) ? static_cast<float>(limit) : kMaxFloat;
}

bool canBound(std::int64_t pixels)
{
    return relativeError(pixels) <= 0.25;
}

template class OverlapError<PixelRGBA8>;
template class OverlapError<PixelRGBA16>;
template class OverlapError<PixelRGBAf>;

}  // namespace Orvane::Engine
