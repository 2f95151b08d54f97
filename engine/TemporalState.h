#pragma once

#include <vector>

#include "engine/map/Map.h"
#include "engine/map/Region.h"

namespace Orvane::Engine {

/// One block as it was placed, enough to replay it from another frame's texture. Positions are the
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

struct BlockSize {
    float width = 0.0f, height = 0.0f;
};

/// What an instance keeps of its last fresh render, so that later frames can replay its blocks.
/// Used on the render thread only; the host never runs two renders of one instance at once.
struct TemporalState {
    BlockList blockList;
    Map<Pixel32f> compositeMask;  ///< 0 to M
    Map<Pixel32f> luminanceGain;  ///< factors; empty when luminance was not matched
    Region fillBounds;            ///< what the render covered with texture
    BlockSize savedBlockSize;
    bool valid = false;  ///< the other fields belong to an earlier fresh render

    /// Forgets everything and frees it.
    void discard() { *this = TemporalState{}; }
};

}  // namespace Orvane::Engine
