#pragma once

#include <vector>

#include "engine/map/Map.h"

namespace Orvane::Engine {

/// One block as it was laid, enough to lay it again from another frame's texture. Positions are
/// corners with the smallest x and y, in absolute pixel coordinates.
struct BlockRecord {
    float x, y;
    float srcX, srcY;
    int textureIndex;
    /// The part of the row's horizontal seam under this block: one pair (x, y) for each of its
    /// columns; empty until the row is finished.
    std::vector<PixelVec2f> seamH;
    /// The block's vertical seam: one pair (x, y) for each of its rows; zeros for the first of a
    /// row.
    std::vector<PixelVec2f> seamV;
};

using BlockList = std::vector<BlockRecord>;

/// The rectangle that a render covers with texture, in absolute pixels; x1 and y1 are exclusive.
struct FillBounds {
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    friend bool operator==(const FillBounds&, const FillBounds&) = default;
};

struct BlockSize {
    float width = 0.0f, height = 0.0f;
};

/// What an instance remembers of its last fresh render, so that later frames can lay the same
/// blocks. Touched on the render thread only; the host never renders one instance twice at once.
struct TemporalState {
    BlockList blockList;
    Map<Pixel32f> compositeMask;  ///< 0 to M
    Map<Pixel32f> luminanceGain;  ///< factors; empty when luminance was not matched
    FillBounds fillBounds;
    BlockSize savedBlockSize;
    bool valid = false;  ///< the other fields belong to an earlier fresh render

    /// Forgets everything and frees it.
    void discard() { *this = TemporalState{}; }
};

}  // namespace Orvane::Engine
