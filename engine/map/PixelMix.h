#pragma once

#include "engine/map/PixelTraits.h"

namespace Orvane::Engine {

/// R, G and B the part t of the way from one pixel to another; alpha is that of `from`.
template <typename Pixel>
Pixel mixed(const Pixel& from, const Pixel& to, float t)
{
    // exact: float a + (b - a) * t for each channel, stored toward zero.
    const auto mix = [t](auto channelFrom, auto channelTo) {
        const auto a = static_cast<float>(channelFrom);
        const auto b = static_cast<float>(channelTo);
        return PixelTraits<Pixel>::stored(a + (b - a) * t);
    };
    return {mix(from.r, to.r), mix(from.g, to.g), mix(from.b, to.b), from.a};
}

}  // namespace Orvane::Engine
