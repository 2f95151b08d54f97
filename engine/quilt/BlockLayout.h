#pragma once

#include "engine/TemporalState.h"
#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// Where a recorded block lies when it is laid: as large as its seams are long, at most `size`, and
/// cut where `limit` ends to the right and above. Empty when nothing is left of it.
Region laidRegion(const BlockRecord& record, const BlockSize& size, const Region& limit);
/// Whether there is something to lay; a texture may have been switched off since the block was
/// recorded.
bool isLaid(const BlockRecord& record, const Region& place, std::size_t textureCount);

/// Tells for each pixel of the state's fill bounds which of the recorded blocks its texture came
/// from: 1 for the first record, and so on; 0 where none lies. Where blocks are blended, the seam
/// decides. Without memory the map has no storage.
Map<Pixel32f> numberBlocks(const TemporalState& state, std::size_t textureCount,
                           const Region& limit);

}  // namespace Orvane::Engine
