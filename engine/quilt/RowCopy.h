#pragma once

#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// Copies an image onto another over the node's region, all channels, reading through the image's
/// edge modes. An image without storage is copied nowhere: the destination keeps what it has.
template <typename Pixel>
class RowCopy final : public Sampler<const Map<Pixel>, Map<Pixel>> {
public:
    void processPass() override;
};

}  // namespace Orvane::Engine
