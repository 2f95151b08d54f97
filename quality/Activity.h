#pragma once

/// How much a picture changes from pixel to pixel at several scales, in cells of it.

#include <array>
#include <cstdint>
#include <vector>

#include "quality/PatchPyramid.h"

namespace Tesseret::Quality {

inline constexpr int kCell = 16;  ///< side of a cell in pixels
inline constexpr int kScales = 3;

struct CellLook {
    std::array<float, 3> colour{};        ///< mean tones
    std::array<float, kScales> change{};  ///< mean absolute difference at 1, 2 and 4 pixels
};

/// The cells of a picture, or of a part of it; the last ones that are not whole are left out.
class Activity {
public:
    Activity() = default;
    explicit Activity(const PatchPyramid& pixels);

    int columns() const { return columns_; }
    int rows() const { return rows_; }
    const CellLook& cell(int column, int row) const
    {
        return cells_[std::size_t(row) * std::size_t(columns_) + std::size_t(column)];
    }
    const std::vector<CellLook>& cells() const { return cells_; }

private:
    int columns_ = 0, rows_ = 0;
    std::vector<CellLook> cells_;
};

/// The look of the 16 x 16 pixels from (x, y) on.
CellLook cellLook(const PatchPyramid& pixels, int x, int y);

/// The square of how differently two cells look, in tones.
float unlikeness(const CellLook& a, const CellLook& b);

}  // namespace Tesseret::Quality
