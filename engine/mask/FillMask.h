#pragma once

#include <optional>

#include "engine/map/Map.h"
#include "libraries/Processor/RenderStatus.h"

namespace Orvane::Engine {

/// Turns a user's mask, with its soft edges, blobs and holes, into one solid region to fill.
///
/// The result is one pixel larger than the mask on every side, lies around it in the mask's
/// coordinates, and holds M on the region and 0 elsewhere. The region is the first area, in scan
/// order, of everything that is not connected to an unmasked pixel drawn at random: holes are
/// filled with the blob around them, and soft edges belong to it. A pixel is unmasked when it is
/// less than 1/255 of M; outside the mask's pixels its fill value counts.
///
/// The mask kind is Pixel8, Pixel16 or Pixel32f. The mask is only read, and read with no edge mode
/// whatever its own is; its pixels may be a part of it. `seed` alone decides the draws. Nothing
/// when the host aborted. A work map without memory is reported on standard error, and the result
/// is 0 everywhere then, or has no storage. `statusRecord` may be null.
template <typename MaskPixel>
std::optional<Map<Pixel32f>> prepareFillMask(Map<MaskPixel>& mask, int seed,
                                             RenderStatus* statusRecord);

}  // namespace Orvane::Engine
