#pragma once

#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// Gives every pixel of the target's region one value.
template <typename Pixel>
class ConstantFill final : public Generator<Map<Pixel>> {
public:
    explicit ConstantFill(Pixel value) : value_(value) {}
    void processPass() override;

private:
    Pixel value_;
};

}  // namespace Orvane::Engine
