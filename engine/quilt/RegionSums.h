#pragma once

#include <cstdint>
#include <vector>

#include "engine/map/Map.h"

namespace Orvane::Engine {

/// Tests with four reads whether a rectangle touches a region: a table of the number of region
/// pixels below and to the left of each corner (Crow 1984).
class RegionSums {
public:
    /// The region is where `mask` is not 0. The mask must outlive the object and keep its geometry.
    explicit RegionSums(const Map<Pixel32f>& mask);

    /// Whether any pixel that the mask reads at [x, x + width) x [y, y + height) is not 0.
    bool touches(int x, int y, int width, int height) const;

private:
    std::uint32_t at(std::int64_t column, std::int64_t row) const
    {
        return sums_[static_cast<std::size_t>(row * (width_ + 1) + column)];
    }

    const Map<Pixel32f>* mask_;
    bool isTabled_ = false;                ///< the table exists; the mask reads 0 outside it
    std::int64_t x_ = 0, y_ = 0;           ///< of the table's first pixel
    std::int64_t width_ = 0, height_ = 0;  ///< of the table, pixels
    std::vector<std::uint32_t> sums_;
};

}  // namespace Orvane::Engine
