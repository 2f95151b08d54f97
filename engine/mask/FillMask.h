#pragma once

#include <optional>

#include "engine/map/Map.h"
#include "libraries/Processor/RenderStatus.h"

namespace Orvane::Engine {

/// Converts a user's mask, with its soft edges, blobs and holes, into one solid region to fill.
///
/// The result extends one pixel beyond the mask on every side, in the mask's coordinates, and holds
/// M on the region and 0 elsewhere. The region is the first area, in scan order, of all pixels not
/// connected to a randomly drawn unmasked pixel: it includes the holes and soft edges of its blob.
/// A pixel is unmasked when it is less than 1/255 of M; outside the mask's pixels its fill value
/// counts.
///
/// The mask kind is Pixel8, Pixel16 or Pixel32f. The mask is only read, as EdgeNone whatever its
/// own edge mode; it may store only part of itself. The draws depend on `seed` only. Returns
/// nothing after an abort. A work map without memory is reported on standard error; the result is
/// then 0 everywhere, or has no storage. `statusRecord` may be null.
template <typename MaskPixel>
std::optional<Map<Pixel32f>> prepareFillMask(Map<MaskPixel>& mask, int seed,
                                             RenderStatus* statusRecord);

}  // namespace Orvane::Engine
