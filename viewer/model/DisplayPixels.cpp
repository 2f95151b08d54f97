#include "viewer/model/DisplayPixels.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Tesseret::Viewer {

namespace {

constexpr std::size_t kSteps = 65536;

/// Table from linear light, 0 to 1 in even steps sampled at their middle, to sRGB (IEC 61966-2-1).
std::array<std::uint8_t, kSteps> makeCurve()
{
    std::array<std::uint8_t, kSteps> curve{};
    for (std::size_t i = 0; i < kSteps; ++i) {
        const double linear = (double(i) + 0.5) / double(kSteps);
        const double shown =
            linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1.0 / 2.4) - 0.055;
        curve[i] = static_cast<std::uint8_t>(std::lround(255.0 * shown));
    }
    return curve;
}

std::uint8_t shown(std::uint8_t value)
{
    return value;
}

std::uint8_t shown(std::uint16_t value)
{
    return static_cast<std::uint8_t>((value + 128u) / 257u);
}

std::uint8_t shown(float value)
{
    static const std::array<std::uint8_t, kSteps> kCurve = makeCurve();
    if (!(value > 0.0f)) return 0;  // NaN too
    if (value >= 1.0f) return 255;
    return kCurve[static_cast<std::size_t>(value * float(kSteps))];
}

template <typename Channel>
void convert(const Picture& picture, const OfxRectI& part, std::vector<std::uint8_t>& pixels)
{
    const int channels = picture.channels();
    const bool isGrey = picture.components() == Components::Alpha;
    std::uint8_t* to = pixels.data();
    for (int y = part.y1; y < part.y2; ++y) {
        const Channel* from = picture.pixel<Channel>(part.x1, y);
        for (int x = part.x1; x < part.x2; ++x, from += channels, to += 4) {
            to[0] = shown(from[0]);
            to[1] = isGrey ? to[0] : shown(from[1]);
            to[2] = isGrey ? to[0] : shown(from[2]);
            to[3] = 255;
        }
    }
}

}  // namespace

std::vector<std::uint8_t> displayPixels(const Picture& picture, const OfxRectI& part)
{
    if (isEmpty(part)) return {};
    std::vector<std::uint8_t> pixels(std::size_t(part.x2 - part.x1) *
                                     std::size_t(part.y2 - part.y1) * 4);
    switch (picture.depth()) {
        case Depth::Byte:
            convert<std::uint8_t>(picture, part, pixels);
            break;
        case Depth::Short:
            convert<std::uint16_t>(picture, part, pixels);
            break;
        case Depth::Float:
            convert<float>(picture, part, pixels);
            break;
    }
    return pixels;
}

}  // namespace Tesseret::Viewer
