#pragma once

#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// Sets every pixel of the target's region to one value.
template <typename Pixel>
class ConstantFill final : public Generator<Map<Pixel>> {
public:
    explicit ConstantFill(Pixel value) : value_(value) {}
    void processPass() override;

private:
    Pixel value_;
};

/// Copies one work map onto another over the node's region. The input is read through its edge
/// modes, and one without storage reads as its fill value. `Pixel` is Pixel32f or Pixel32i.
template <typename Pixel>
class MapCopy final : public Sampler<const Map<Pixel>, Map<Pixel>> {
public:
    void processPass() override;
};

/// Copies an image onto another over the node's region, all channels, reading through the image's
/// edge modes. An image without storage leaves the destination unchanged.
template <typename Pixel>
class RowCopy final : public Sampler<const Map<Pixel>, Map<Pixel>> {
public:
    void processPass() override;
};

}  // namespace Orvane::Engine
