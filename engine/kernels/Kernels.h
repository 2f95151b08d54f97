#pragma once

/// The engine's inner loops, in one table for each instruction set. A kernel takes pointers,
/// strides and sizes, not maps; its caller handles the edges. All tables give bit-identical
/// results; `Plain.cpp` is the reference.

#include <cstddef>
#include <span>

#include "engine/map/Rows.h"

namespace Orvane::Engine::Kernels {

/// The number of partial sums of a rough error, for each channel.
inline constexpr int kRoughLanes = 8;
/// A rough error is compared with its limit after at least this many pixels.
inline constexpr int kRoughSegment = 256;

/// The largest step of a seam.
inline constexpr int kMaxSeamStep = 8;
/// Floats that a seam line may read before its first and after its last entry, and write after it.
inline constexpr int kSeamPadding = 16;

template <typename Pixel>
struct PixelKernels {
    /// The error of each pixel of two images (`OverlapError`), 0 where `weights` are given and not
    /// positive. The rows of `map` are `mapStride` floats apart.
    void (*errorMap)(Rows<Pixel> a, Rows<Pixel> b, Rows<float> weights, int width, int height,
                     float* map, std::ptrdiff_t mapStride);

    /// An approximation of the sum of these errors, in float throughout, with kRoughLanes partial
    /// sums for each colour: pixel x of a row goes to sum x mod kRoughLanes, and the pixels after
    /// the last full group go where they stand among the row's last kRoughLanes pixels. Stops early
    /// once the sum exceeds `limit`, which is checked at every kRoughSegment pixels or more.
    float (*roughError)(Rows<Pixel> a, Rows<Pixel> b, Rows<float> weights, int width, int height,
                        float limit);

    /// The final composite: the texture, which may be in `out`, times the gain (may be null), over
    /// the source; the texture's share is `mask` / M. See `SynthesisNode`.
    void (*composite)(Pixel* out, const Pixel* texture, const Pixel* source, const float* mask,
                      const float* gain, int count);

    /// Mixes R, G and B of `from` into `to` by shares of 0 to 1; alpha of `to` stays.
    void (*blend)(Pixel* to, const Pixel* from, const float* shares, int count);

    /// The mean of R, G and B, as a float; integer division at 8 and 16 bits.
    void (*luma)(const Pixel* pixels, float* means, int count);
};

/// The number of lines that a box filter takes side by side.
inline constexpr int kBoxLines = 16;

/// A box filter along a line: the sum of `size` samples, and of the ones before and after them
/// times `fraction`, times `norm`.
struct Box {
    int size;
    double fraction, norm;
};

/// Kernels on planes of floats.
struct PlaneKernels {
    /// One line of a seam search: cost[s] = error[s] + the minimum of before[s - step] to
    /// before[s + step]; ties go to the first.
    void (*seamLine)(const float* error, const float* before, float* cost, int count, int step);

    /// Filters kBoxLines lines, whose samples are side by side: sample i of the result, for i below
    /// `count`, takes the place of sample i, and its box starts with sample i + 1. These boxes
    /// start in one segment of the line, the first of them `first` samples into it: first + count
    /// is at most the box's size. Each is summed as the tail of that segment, from its end, plus
    /// the head of the next, in double. `tails` has room for count * kBoxLines sums; reads `size` +
    /// `count` samples and one more.
    void (*boxSegment)(float* samples, double* tails, const Box& box, int first, int count);

    /// Puts the samples of kBoxLines lines side by side, and back.
    void (*interleave)(const float* const* lines, float* samples, int count);
    void (*separate)(const float* samples, float* const* lines, int count);
};

struct KernelTable {
    const char* name;  ///< "plain", "sse4.1", "avx2"
    PixelKernels<PixelRGBA8> rgba8;
    PixelKernels<PixelRGBA16> rgba16;
    PixelKernels<PixelRGBAf> rgbaf;
    PlaneKernels plane;
};

/// The tables that this processor can run: the plain one first, the fastest last.
std::span<const KernelTable* const> offeredTables();

/// The table in use, chosen once: the fastest, or for debugging the one named by the environment
/// variable TESSERET_KERNELS.
const KernelTable& kernels();

template <typename Pixel>
const PixelKernels<Pixel>& pixelKernels(const KernelTable& table);
template <>
inline const PixelKernels<PixelRGBA8>& pixelKernels(const KernelTable& table)
{
    return table.rgba8;
}
template <>
inline const PixelKernels<PixelRGBA16>& pixelKernels(const KernelTable& table)
{
    return table.rgba16;
}
template <>
inline const PixelKernels<PixelRGBAf>& pixelKernels(const KernelTable& table)
{
    return table.rgbaf;
}

}  // namespace Orvane::Engine::Kernels
