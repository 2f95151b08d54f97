#pragma once

/// The engine's inner loops, behind one table for each instruction set. A kernel sees pointers,
/// strides and sizes, never a map: whoever calls it has resolved the edges. Every table gives the
/// same bits; `Plain.cpp` is the reference and the one to read first.

#include <cstddef>
#include <span>

#include "engine/map/Rows.h"

namespace Orvane::Engine::Kernels {

/// How many sums a rough error is spread over.
inline constexpr int kRoughLanes = 8;
/// A rough error looks at its limit after at least so many pixels.
inline constexpr int kRoughStretch = 256;

/// Floats that a seam line may read before its first and behind its last entry, and write behind
/// it, for steps up to the most.
inline constexpr int kSeamPadding = 16;
inline constexpr int kMostSeamStep = 8;

template <typename Pixel>
struct PixelKernels {
    /// The errors of two images (`OverlapError`), `width` for each of `height` rows, 0 where
    /// `weights` (if there are any) are not positive; the rows of `map` lie `mapStride` floats
    /// apart.
    void (*errorMap)(Rows<Pixel> a, Rows<Pixel> b, Rows<float> weights, int width, int height,
                     float* map, std::ptrdiff_t mapStride);

    /// About the sum of these errors, in float throughout and spread over kRoughLanes sums for each
    /// colour: a row's pixel x goes to sum x mod kRoughLanes, those behind the last full group as
    /// if the row's last kRoughLanes pixels were one. Ends early once it has more than `limit`, at
    /// which it looks every kRoughStretch pixels or more.
    float (*roughError)(Rows<Pixel> a, Rows<Pixel> b, Rows<float> weights, int width, int height,
                        float limit);

    /// The final composite: the texture in `out`, times the gain (null: none), over the source by
    /// the share that `mask` gives. `SynthesisNode` says what becomes of each pixel.
    void (*composite)(Pixel* out, const Pixel* source, const float* mask, const float* gain,
                      int count);

    /// Mixes R, G and B of `from` into `to` by shares of 0 to 1; alpha stays.
    void (*blend)(Pixel* to, const Pixel* from, const float* shares, int count);

    /// The mean of R, G and B, as a float; integer division at 8 and 16 bits.
    void (*luma)(const Pixel* pixels, float* means, int count);
};

/// Kernels on planes of floats.
struct PlaneKernels {
    /// One line of a seam search: cost[s] = error[s] + the smallest of before[s - step] to
    /// before[s + step], the first of several.
    void (*seamLine)(const float* error, const float* before, float* cost, int count, int step);
};

struct KernelTable {
    const char* name;  ///< "plain", "sse4.1", "avx2"
    PixelKernels<PixelRGBA8> rgba8;
    PixelKernels<PixelRGBA16> rgba16;
    PixelKernels<PixelRGBAf> rgbaf;
    PlaneKernels plane;
};

/// The tables that this processor can run; the plain one first, the fastest last.
std::span<const KernelTable* const> offeredTables();

/// The table in use: the fastest, or the one that the environment variable TESSERET_KERNELS names,
/// for looking for faults. Chosen once.
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
