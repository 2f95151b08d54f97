#pragma once

#include <span>

#include "engine/map/Map.h"

namespace Orvane::Engine {

struct SeamSearch {
    int step;    ///< largest distance between neighbouring entries of the path
    int margin;  ///< columns (rows) at both sides of the strip where the seam may not lie
};

enum class SeamMode {
    Vertical,   ///< one x for each row of the strip
    Horizontal  ///< one y for each column of the strip
};

/// The seam of least error through a strip (Efros and Freeman 2001, section 2.1), by dynamic
/// programming over float sums; every minimum goes to the smallest index. A strip narrower than
/// both margins has its margins cut so that the middle column (row) is left.
///
/// `error` is W x H; `path` gets H pairs (x, row) or W pairs (column, y), strip-local. `cost` is a
/// work map that is given the size of `error` when it has another. Without storage in either map
/// the path is the straight line at index 0.
void bestFitPath(const SeamSearch& search, const Map<Pixel32f>& error, Map<Pixel32f>& cost,
                 std::span<PixelVec2f> path, SeamMode mode);

}  // namespace Orvane::Engine
