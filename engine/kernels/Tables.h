#pragma once

/// Declarations shared by the tables' files and the one that chooses among them.

#include "engine/kernels/Kernels.h"

namespace Orvane::Engine::Kernels {

extern const KernelTable kPlainTable;
#if defined(TESSERET_X86_KERNELS)
extern const KernelTable kSse41Table;
extern const KernelTable kAvx2Table;
#endif

/// The factors of a rough error: of the differences, to keep their eighth powers in range, and of
/// the sum.
template <typename Pixel>
struct RoughScale;
template <>
struct RoughScale<PixelRGBA8> {
    static constexpr float kBefore = 1.0f;
    static constexpr float kAfter = 5.5934345e-20f;  ///< 255 to the power of -8
};
template <>
struct RoughScale<PixelRGBA16> {
    static constexpr float kBefore = 1.5259022e-05f;
    static constexpr float kAfter = 1.0f;
};
template <>
struct RoughScale<PixelRGBAf> {
    static constexpr float kBefore = 1.0f;
    static constexpr float kAfter = 1.0f;
};

}  // namespace Orvane::Engine::Kernels
