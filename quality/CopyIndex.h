#pragma once

/// Finds where pixels were copied from.

#include <cstdint>
#include <optional>
#include <vector>

#include "quality/PatchPyramid.h"

namespace Tesseret::Quality {

/// A table from the values of a few pixels of every square of kSpan pixels to the square's place.
/// Fills copy whole blocks, so nearly all squares inside a block are found at once; of several
/// equal squares one is kept. The idea is that of coherency sensitive hashing (Korman and Avidan,
/// 2011), reduced to exact copies.
class CopyIndex {
public:
    static constexpr int kSpan = 7;

    CopyIndex() = default;
    /// Squares that start where `allowed` (one value per pixel) is 0 are left out.
    CopyIndex(const PatchPyramid& picture, const std::vector<std::uint8_t>& allowed);

    struct Place {
        int x, y;
    };
    /// A square that may equal the one at (x, y) of another picture.
    std::optional<Place> find(const PatchPyramid& picture, int x, int y) const;

private:
    int width_ = 0;
    int shift_ = 0;                      ///< of a hash, to its place in the table
    std::vector<std::uint32_t> places_;  ///< 1 + y * width + x; 0 is free
};

}  // namespace Tesseret::Quality
