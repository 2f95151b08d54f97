#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/map/MapRow.h"

namespace Orvane::Engine {

/// Rows of pixels in memory; `stride` is the distance from one row to the next in bytes.
template <typename Pixel>
struct Rows {
    const Pixel* first = nullptr;
    std::ptrdiff_t stride = 0;

    const Pixel* at(int y) const
    {
        const auto* bytes = reinterpret_cast<const unsigned char*>(first);
        return reinterpret_cast<const Pixel*>(bytes + y * stride);
    }
    Rows from(int x, int y) const { return {at(y) + x, stride}; }
};

/// The pixels that a map reads at [x, x + width) x [y, y + height): in place where none of them
/// needs edge handling, else as a copy in `scratch`.
template <typename Pixel>
Rows<Pixel> rowsOf(const Map<Pixel>& map, int x, int y, int width, int height,
                   std::vector<Pixel>& scratch)
{
    if (const Pixel* first = map.interiorPixels(x, y, width, height)) return {first, map.stride()};
    const auto columns = static_cast<std::size_t>(width);
    scratch.resize(columns * static_cast<std::size_t>(height));
    Pixel* to = scratch.data();
    for (int j = 0; j < height; ++j, to += columns) {
        const RowReader row(map, y + j);
        if (const Pixel* span = row.span(x, width)) {
            std::copy_n(span, columns, to);
        } else {
            for (int i = 0; i < width; ++i) to[i] = row[x + i];
        }
    }
    return {scratch.data(), static_cast<std::ptrdiff_t>(columns * sizeof(Pixel))};
}

}  // namespace Orvane::Engine
