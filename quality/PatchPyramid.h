#pragma once

/// Square patches of a picture at several scales, to be compared quickly at any pixel.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "quality/Tones.h"

namespace Tesseret::Quality {

/// A patch has kPatch x kPatch samples in every level; level l takes the means of squares of 2^l
/// pixels, side by side, so it covers kPatch * 2^l pixels.
inline constexpr int kPatch = 8;
inline constexpr int kPatchValues = 3 * kPatch * kPatch;

/// Side of a patch of this level in pixels.
constexpr int patchSide(int level)
{
    return kPatch << level;
}

/// The means are kept for squares at every pixel (in level 3, every second), not only at multiples
/// of their side: a copy moved by a pixel is an exact copy in all levels. Squares that start at
/// equal remainders of x and y lie side by side in one plane, so the rows of a patch are
/// contiguous.
class PatchPyramid {
public:
    PatchPyramid() = default;
    PatchPyramid(Tones tones, int levels);

    int width() const { return width_; }
    int height() const { return height_; }
    int levels() const { return int(levels_.size()); }
    /// The first row of samples from (x, y) upwards; a patch must lie in the picture.
    const std::int16_t* sample(int x, int y, int level) const
    {
        const Level& l = levels_[std::size_t(level)];
        const int remainder = (1 << level) - 1, skip = skipped(level);
        const std::size_t plane = (std::size_t(y & remainder) >> skip << (level - skip)) +
                                  (std::size_t(x & remainder) >> skip);
        return l.values.get() + plane * l.planeValues + std::size_t(y >> level) * l.rowValues +
               3 * std::size_t(x >> level);
    }
    /// Values from one row of samples to the next.
    std::size_t rowValues(int level) const { return levels_[std::size_t(level)].rowValues; }

private:
    struct Level {
        std::size_t rowValues = 0;
        std::size_t planeValues = 0;
        std::unique_ptr<std::int16_t[]> values;
    };

    /// Bits of a remainder that have no planes of their own.
    static constexpr int skipped(int level) { return level < 2 ? 0 : level - 1; }

    int width_ = 0;
    int height_ = 0;
    std::vector<Level> levels_;
};

/// The sum of squared differences of two patches, or a part of it that is at least `limit`.
std::int32_t patchDifference(const std::int16_t* a, std::size_t rowA, const std::int16_t* b,
                             std::size_t rowB, std::int32_t limit);

}  // namespace Tesseret::Quality
