#pragma once

#include "engine/TemporalState.h"

namespace Orvane::Engine {

/// The region of a recorded block in a replay: as large as its seams are long, at most `size`, and
/// clipped at the x1 and y1 of `limit`. Empty when nothing is left of it.
Region placedRegion(const BlockRecord& record, const BlockSize& size, const Region& limit);
/// Whether a replay places the block: its region is not empty and its texture is still in use.
bool isPlaced(const BlockRecord& record, const Region& region, std::size_t textureCount);

/// A map over the state's fill bounds with the number of the recorded block that each pixel's
/// texture came from: 1 for the first record, and so on; 0 for none. Where blocks are blended, the
/// seam decides. Without memory the map has no storage.
Map<Pixel32f> numberBlocks(const TemporalState& state, std::size_t textureCount,
                           const Region& limit);

}  // namespace Orvane::Engine
