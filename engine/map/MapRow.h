#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "engine/map/Map.h"

namespace Orvane::Engine {

/// The pixels [begin, end) of a row, side by side in memory; none when the ends are equal.
template <typename Pixel>
struct PixelSpan {
    int begin, end;
    const Pixel* pixels;  ///< the one at `begin`
};

/// Reads one row of a map by absolute x: the row is resolved once, and so is the range of x that
/// needs no edge handling. The map must outlive the reader and keep its geometry.
template <typename Pixel>
class RowReader {
public:
    RowReader(const Map<Pixel>& map, int y) : map_(&map)
    {
        const std::optional<int> row = map.yAxis().resolve(y);
        if (!row || map.firstPixel() == nullptr) return;
        const MapAxis& axis = map.xAxis();
        row_ = map.pixelAt(0, *row);
        base_ = std::int64_t{axis.offset} + axis.storeStart;
        first_ = std::int64_t{axis.offset} + std::max(axis.activeStart, axis.storeStart);
        end_ = std::int64_t{axis.offset} + std::min(axis.activeEnd, axis.storeEnd) + 1;
    }

    // Without a row no x lies inside.
    // NOLINTNEXTLINE(clang-analyzer-core.*)
    Pixel operator[](int x) const { return x >= first_ && x < end_ ? row_[x - base_] : outside(x); }

    /// The pixel that x reads, or null where there is none.
    const Pixel* find(int x) const
    {
        if (row_ == nullptr) return nullptr;
        const std::optional<int> column = map_->xAxis().resolve(x);
        return column ? row_ + *column : nullptr;
    }

    /// The pixels [x, x + count) in memory, or null when some need edge handling.
    const Pixel* span(int x, int count) const
    {
        return x >= first_ && std::int64_t{x} + count <= end_ ? row_ + (x - base_) : nullptr;
    }

    /// The part of [x0, x1) that needs no edge handling. Before and behind it there is no pixel
    /// when the map is read as EdgeNone.
    PixelSpan<Pixel> interior(int x0, int x1) const
    {
        if (row_ == nullptr) return {x1, x1, nullptr};
        const auto begin = static_cast<int>(std::clamp<std::int64_t>(first_, x0, x1));
        const auto end = static_cast<int>(std::clamp<std::int64_t>(end_, begin, x1));
        return {begin, end, begin < end ? row_ + (begin - base_) : nullptr};
    }

private:
    Pixel outside(int x) const
    {
        const Pixel* pixel = find(x);
        return pixel != nullptr ? *pixel : map_->fillValue();
    }

    const Map<Pixel>* map_;
    const Pixel* row_ = nullptr;
    std::int64_t base_ = 0, first_ = 0, end_ = 0;
};

/// Writes one row of a map by absolute x. The row and every x written must be stored: nodes clamp
/// their region to the map before they run.
template <typename Pixel>
class RowWriter {
public:
    RowWriter(Map<Pixel>& map, int y)
        : row_(map.pixelAt(0, *map.yAxis().translate(y))),
          base_(std::int64_t{map.xAxis().origin} + map.xAxis().storeStart)
    {}

    Pixel& operator[](int x) { return row_[x - base_]; }
    /// The pixel at x; the rest of the row follows it.
    Pixel* from(int x) { return row_ + (x - base_); }

private:
    Pixel* row_;
    std::int64_t base_;
};

/// Copies the pixels [x0, x1) of a row, through the edge modes of the source map.
template <typename Pixel>
void copyRow(const RowReader<Pixel>& from, RowWriter<Pixel>& to, int x0, int x1)
{
    if (const Pixel* span = from.span(x0, x1 - x0)) {
        std::copy_n(span, x1 - x0, to.from(x0));
    } else {
        for (int x = x0; x < x1; ++x) to[x] = from[x];
    }
}

}  // namespace Orvane::Engine
