#pragma once

/// The pixel kinds of the engine. Channels are interleaved R, G, B, A and keep the host's range: 0
/// to 255, 0 to 65535, nominally 0 to 1. Only stages that document it convert one kind to another.

#include <cstdint>

namespace Orvane::Engine {

template <typename ChannelType>
struct RGBA {
    using Channel = ChannelType;
    Channel r, g, b, a;
    friend bool operator==(const RGBA&, const RGBA&) = default;
};

using PixelRGBA8 = RGBA<std::uint8_t>;
using PixelRGBA16 = RGBA<std::uint16_t>;
using PixelRGBAf = RGBA<float>;

using Pixel8 = std::uint8_t;
using Pixel16 = std::uint16_t;
using Pixel32f = float;
using Pixel32i = std::int32_t;

struct PixelVec2f {
    float x, y;
    friend bool operator==(const PixelVec2f&, const PixelVec2f&) = default;
};

/// A pixel in absolute coordinates.
struct PixelPoint {
    int x = 0, y = 0;
    friend bool operator==(const PixelPoint&, const PixelPoint&) = default;
};

static_assert(sizeof(PixelRGBA8) == 4 && sizeof(PixelRGBA16) == 8 && sizeof(PixelRGBAf) == 16);
static_assert(sizeof(PixelVec2f) == 8);

/// The type of an interpolated pixel: the same channels as floats.
template <typename Pixel>
struct Interpolated {
    using Type = float;
};
template <typename Channel>
struct Interpolated<RGBA<Channel>> {
    using Type = PixelRGBAf;
};
template <>
struct Interpolated<PixelVec2f> {
    using Type = PixelVec2f;
};
template <typename Pixel>
using SampleOf = typename Interpolated<Pixel>::Type;

/// The kinds of a host image: the six that clips deliver.
enum class PixelKind { None, RGBA8, RGBA16, RGBAf, Alpha8, Alpha16, Alphaf };

template <typename Pixel>
inline constexpr PixelKind kPixelKind = PixelKind::None;
template <>
inline constexpr PixelKind kPixelKind<PixelRGBA8> = PixelKind::RGBA8;
template <>
inline constexpr PixelKind kPixelKind<PixelRGBA16> = PixelKind::RGBA16;
template <>
inline constexpr PixelKind kPixelKind<PixelRGBAf> = PixelKind::RGBAf;
template <>
inline constexpr PixelKind kPixelKind<Pixel8> = PixelKind::Alpha8;
template <>
inline constexpr PixelKind kPixelKind<Pixel16> = PixelKind::Alpha16;
template <>
inline constexpr PixelKind kPixelKind<Pixel32f> = PixelKind::Alphaf;

}  // namespace Orvane::Engine
