/// The reference kernels: pixel by pixel, for any instruction set.

#include <algorithm>
#include <array>
#include <cmath>

#include "engine/kernels/Tables.h"
#include "engine/map/PixelMix.h"
#include "engine/map/PixelTraits.h"

namespace Orvane::Engine::Kernels {
namespace {

/// d to the eighth.
double eighthPower(float d)
{
    // exact: the square of a float is exact in double; the fourth and the eighth power round once
    // each, on every machine alike, which a library's pow does not guarantee.
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

bool counts(Rows<float> weights, int x, int y)
{
    return weights.first == nullptr || weights.at(y)[x] > 0.0f;
}

template <typename Pixel>
void errorMap(Rows<Pixel> a, Rows<Pixel> b, Rows<float> weights, int width, int height, float* map,
              std::ptrdiff_t mapStride)
{
    for (int y = 0; y < height; ++y) {
        const Pixel* aRow = a.at(y);
        const Pixel* bRow = b.at(y);
        float* row = map + y * mapStride;
        for (int x = 0; x < width; ++x) {
            row[x] = counts(weights, x, y) ? pixelError(aRow[x], bRow[x]) : 0.0f;
        }
    }
}

/// The partial sums of a rough error.
struct RoughSums {
    std::array<float, kRoughLanes> r{}, g{}, b{};

    float total(float scale) const
    {
        std::array<float, kRoughLanes> sums;
        for (std::size_t i = 0; i < sums.size(); ++i) sums[i] = r[i] + g[i] + b[i];
        for (std::size_t half = kRoughLanes / 2; half > 0; half /= 2) {
            for (std::size_t i = 0; i < half; ++i) sums[i] += sums[i + half];
        }
        return sums[0] * scale;
    }
};

float roughPower(float d)
{
    const float second = d * d;
    const float fourth = second * second;
    return fourth * fourth;
}

template <typename Channel>
float plainDifference(Channel a, Channel b)
{
    return static_cast<float>(a) - static_cast<float>(b);
}

template <typename Pixel>
float roughError(Rows<Pixel> a, Rows<Pixel> b, Rows<float> weights, int width, int height,
                 float limit)
{
    using Scale = RoughScale<Pixel>;
    RoughSums sums;
    int seen = 0;
    const int last = std::max(width - kRoughLanes, 0);
    for (int y = 0; y < height; ++y) {
        const Pixel* aRow = a.at(y);
        const Pixel* bRow = b.at(y);
        for (int x = 0; x < width; ++x) {
            if (!counts(weights, x, y)) continue;
            const bool inBody = x < width - width % kRoughLanes;
            const auto lane = static_cast<std::size_t>(inBody ? x % kRoughLanes : x - last);
            sums.r[lane] += roughPower(plainDifference(aRow[x].r, bRow[x].r) * Scale::kBefore);
            sums.g[lane] += roughPower(plainDifference(aRow[x].g, bRow[x].g) * Scale::kBefore);
            sums.b[lane] += roughPower(plainDifference(aRow[x].b, bRow[x].b) * Scale::kBefore);
        }
        seen += width;
        if (seen < kRoughSegment) continue;
        seen = 0;
        if (sums.total(Scale::kAfter) > limit) break;
    }
    return sums.total(Scale::kAfter);
}

template <typename Pixel>
void composite(Pixel* out, const Pixel* texture, const Pixel* source, const float* mask,
               const float* gain, int count)
{
    for (int i = 0; i < count; ++i) {
        const Pixel front = gain != nullptr ? gained(texture[i], gain[i]) : texture[i];
        out[i] = composited(front, source[i], textureShare<Pixel>(mask[i]));
    }
}

template <typename Pixel>
void blend(Pixel* to, const Pixel* from, const float* shares, int count)
{
    for (int i = 0; i < count; ++i) to[i] = mixed(to[i], from[i], shares[i]);
}

template <typename Pixel>
float lumaOf(const Pixel& p)
{
    // exact: at 8 and 16 bits an integer division.
    return static_cast<float>((p.r + p.g + p.b) / 3);
}

template <>
float lumaOf(const PixelRGBAf& p)
{
    return (p.r + p.g + p.b) / 3.0f;
}

template <typename Pixel>
void luma(const Pixel* pixels, float* means, int count)
{
    for (int i = 0; i < count; ++i) means[i] = lumaOf(pixels[i]);
}

void seamLine(const float* error, const float* before, float* cost, int count, int step)
{
    for (int s = 0; s < count; ++s) {
        float min = before[s - step];
        for (int from = s - step + 1; from <= s + step; ++from) {
            if (before[from] < min) min = before[from];
        }
        cost[s] = error[s] + min;  // exact: float sums
    }
}

void boxSegment(float* samples, double* tails, const Box& box, int first, int count)
{
    const auto at = [samples](int i) { return samples + std::ptrdiff_t{i} * kBoxLines; };
    for (int line = 0; line < kBoxLines; ++line) {
        double sum = 0.0;
        for (int i = box.size - 1; i >= first; --i) {
            sum += at(i + 1 - first)[line];
            if (i - first < count) tails[(i - first) * kBoxLines + line] = sum;
        }
        double head = 0.0;
        for (int i = 0; i < first; ++i) head += at(box.size - first + 1 + i)[line];
        for (int i = 0; i < count; ++i) {
            const float leaving = at(i)[line], entering = at(i + box.size + 1)[line];
            // exact: double sums in this order, rounded to a float at the end.
            double whole = tails[i * kBoxLines + line] + head;
            if (box.fraction != 0.0) {
                whole += box.fraction * (static_cast<double>(leaving) + entering);
            }
            at(i)[line] = static_cast<float>(whole * box.norm);
            head += entering;
        }
    }
}

void interleave(const float* const* lines, float* samples, int count)
{
    for (int i = 0; i < count; ++i, samples += kBoxLines) {
        for (int line = 0; line < kBoxLines; ++line) samples[line] = lines[line][i];
    }
}

void separate(const float* samples, float* const* lines, int count)
{
    for (int i = 0; i < count; ++i, samples += kBoxLines) {
        for (int line = 0; line < kBoxLines; ++line) lines[line][i] = samples[line];
    }
}

template <typename Pixel>
constexpr PixelKernels<Pixel> kPixelKernels = {errorMap<Pixel>, roughError<Pixel>, composite<Pixel>,
                                               blend<Pixel>, luma<Pixel>};

}  // namespace

const KernelTable kPlainTable = {"plain",
                                 kPixelKernels<PixelRGBA8>,
                                 kPixelKernels<PixelRGBA16>,
                                 kPixelKernels<PixelRGBAf>,
                                 {seamLine, boxSegment, interleave, separate}};

}  // namespace Orvane::Engine::Kernels
