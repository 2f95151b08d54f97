#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "engine/map/Map.h"

namespace Orvane::Engine {

/// Reads single pixels of a map by absolute coordinates, as `Map::read` does: the range that needs
/// no edge handling is resolved once. The map must outlive the reader and keep its geometry.
template <typename Pixel>
class PointReader {
public:
    explicit PointReader(const Map<Pixel>& map) : map_(&map), x_(map.xAxis()), y_(map.yAxis())
    {
        if (map.firstPixel() == nullptr) x_.count = 0;
    }

    Pixel operator()(int x, int y) const
    {
        // One comparison for both ends: what lies before the first index is a large number.
        const auto column = static_cast<std::uint64_t>(x - x_.first);
        const auto row = static_cast<std::uint64_t>(y - y_.first);
        if (column >= x_.count || row >= y_.count) return map_->read(x, y);
        return *map_->pixelAt(static_cast<int>(column) + x_.stored,
                              static_cast<int>(row) + y_.stored);
    }

private:
    /// The coordinates of an axis that are both active and stored.
    struct Interior {
        explicit Interior(const MapAxis& axis)
        {
            const std::int64_t begin = std::max(axis.activeStart, axis.storeStart);
            const std::int64_t end = std::int64_t{std::min(axis.activeEnd, axis.storeEnd)} + 1;
            first = axis.offset + begin;
            count = begin < end ? static_cast<std::uint64_t>(end - begin) : 0;
            stored = static_cast<int>(begin - axis.storeStart);
        }
        std::int64_t first;
        std::uint64_t count;
        int stored;  ///< the stored index of `first`
    };

    const Map<Pixel>* map_;
    Interior x_, y_;
};

}  // namespace Orvane::Engine
