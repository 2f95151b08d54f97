#pragma once

#include <cstdint>

#include "engine/map/PixelTypes.h"

namespace Orvane::Engine {

/// Everything that differs between the three pixel depths. M, the channel maximum, is kMax.
template <typename Pixel>
struct PixelTraits;

template <>
struct PixelTraits<PixelRGBA8> {
    using Channel = std::uint8_t;
    using Mask = Pixel8;
    static constexpr float kMax = 255.0f;
    static constexpr float kInverseMax = 0.003921569f;  // float nearest 1/M
    /// A channel from a computed value of 0 to M, toward zero.
    static constexpr Channel stored(float value) { return static_cast<Channel>(value); }
    /// (a - b) / M, rounded once to a float.
    static constexpr float difference(Channel a, Channel b)
    {
        return static_cast<float>(a - b) / kMax;
    }
};

template <>
struct PixelTraits<PixelRGBA16> {
    using Channel = std::uint16_t;
    using Mask = Pixel16;
    static constexpr float kMax = 65535.0f;
    static constexpr float kInverseMax = 1.5259022e-05f;
    static constexpr Channel stored(float value) { return static_cast<Channel>(value); }
    static constexpr float difference(Channel a, Channel b)
    {
        return static_cast<float>(a - b) * kInverseMax;
    }
};

template <>
struct PixelTraits<PixelRGBAf> {
    using Channel = float;
    using Mask = Pixel32f;
    static constexpr float kMax = 1.0f;
    static constexpr float kInverseMax = 1.0f;
    static constexpr Channel stored(float value) { return value; }
    static constexpr float difference(Channel a, Channel b) { return a - b; }
};

/// The same for the single-channel kinds that masks come in.
template <typename MaskPixel>
struct MaskTraits;

template <>
struct MaskTraits<Pixel8> {
    static constexpr float kMax = 255.0f;
    static constexpr float kToByte = 1.0f;  ///< scales 0 to M to 0 to 255
};

template <>
struct MaskTraits<Pixel16> {
    static constexpr float kMax = 65535.0f;
    static constexpr float kToByte = 0.0038910506f;
};

template <>
struct MaskTraits<Pixel32f> {
    static constexpr float kMax = 1.0f;
    static constexpr float kToByte = 255.0f;
};

}  // namespace Orvane::Engine
