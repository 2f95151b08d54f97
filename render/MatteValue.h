#pragma once

/// The meaning of a matte's values: how strongly a pixel is masked, from 0 to full scale.

#include <cstdint>

#include "picture/Picture.h"

namespace Tesseret::Render {

/// The end of the scale that is to be filled.
enum class Polarity { White, Black };

template <typename Channel>
struct MatteScale;

/// `kToByte` scales a value to 0 to 255, with the plug-in's own constants.
template <>
struct MatteScale<std::uint8_t> {
    static constexpr std::uint8_t kFull = 255;
    static constexpr float kToByte = 1.0f;
};
template <>
struct MatteScale<std::uint16_t> {
    static constexpr std::uint16_t kFull = 65535;
    static constexpr float kToByte = 0.0038910506f;
};
template <>
struct MatteScale<float> {
    static constexpr float kFull = 1.0f;
    static constexpr float kToByte = 255.0f;
};

/// Converts a value of the matte to its strength of masking, and back.
template <typename Channel>
Channel masking(Channel value, Polarity polarity)
{
    if (polarity == Polarity::White) return value;
    return static_cast<Channel>(MatteScale<Channel>::kFull - value);
}

/// Whether the plug-in fills a pixel of this strength of masking: NaN and less than 1 of 255 do not
/// count.
template <typename Channel>
bool isMasked(Channel strength)
{
    // exact: one float product, as in the plug-in
    return static_cast<float>(strength) * MatteScale<Channel>::kToByte >= 1.0f;
}

/// Calls `work` with a zero of the depth's channel type.
template <typename Work>
auto atDepth(Depth depth, const Work& work)
{
    switch (depth) {
        case Depth::Byte:
            return work(std::uint8_t{});
        case Depth::Short:
            return work(std::uint16_t{});
        case Depth::Float:
            break;
    }
    return work(float{});
}

/// Calls `visit(x, y)` for each pixel of a matte that the plug-in fills.
void eachMasked(const Picture& matte, Polarity polarity, const auto& visit)
{
    const OfxRectI bounds = matte.bounds();
    atDepth(matte.depth(), [&]<typename Channel>(Channel) {
        for (int y = bounds.y1; y < bounds.y2; ++y) {
            const auto* value = matte.pixel<Channel>(bounds.x1, y);
            for (int x = bounds.x1; x < bounds.x2; ++x, ++value) {
                if (isMasked(masking(*value, polarity))) visit(x, y);
            }
        }
    });
}

}  // namespace Tesseret::Render
