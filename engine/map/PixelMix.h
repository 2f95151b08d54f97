#pragma once

#include <algorithm>

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

/// `value` clamped to [0, limit]; NaN becomes 0.
inline float clamped(float value, float limit)
{
    return value > 0.0f ? std::min(value, limit) : 0.0f;
}

/// R, G and B times the gain, clamped to [0, M].
template <typename Pixel>
Pixel gained(const Pixel& p, float gain)
{
    using Traits = PixelTraits<Pixel>;
    const auto scale = [gain](auto channel) {
        return Traits::stored(clamped(static_cast<float>(channel) * gain, Traits::kMax));
    };
    return {scale(p.r), scale(p.g), scale(p.b), p.a};
}

/// The texture's share of a pixel, 0 to 1, from a mask value of 0 to M.
template <typename Pixel>
float textureShare(float maskValue)
{
    return clamped(maskValue * PixelTraits<Pixel>::kInverseMax, 1.0f);
}

/// Mixes texture over source; alpha stays the texture's.
template <typename Pixel>
Pixel composited(const Pixel& texture, const Pixel& source, float share)
{
    // exact: without any texture the source's own bits, which the mixture loses where floats are -0
    // or too far apart.
    Pixel result = share == 0.0f ? source : mixed(source, texture, share);
    result.a = texture.a;
    return result;
}

}  // namespace Orvane::Engine
