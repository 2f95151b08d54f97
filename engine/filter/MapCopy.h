#pragma once

#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// Copies one work map onto another over the node's region. The input is read through its edge
/// modes, and one without storage reads as its fill value. `Pixel` is Pixel32f or Pixel32i.
template <typename Pixel>
class MapCopy final : public Sampler<const Map<Pixel>, Map<Pixel>> {
public:
    void processPass() override;
};

}  // namespace Orvane::Engine
