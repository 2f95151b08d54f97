#include "quality/Tones.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <type_traits>

namespace Tesseret::Quality {
namespace {

constexpr float kWhite = 1023.0f;
constexpr float kHighest = 2047.0f;

template <typename Channel>
constexpr float kFullScale = float(std::numeric_limits<Channel>::max());
template <>
constexpr float kFullScale<float> = 1.0f;

/// Runs `work` with a value of the depth's type.
template <typename Work>
void withChannel(Depth depth, Work&& work)
{
    switch (depth) {
        case Depth::Byte:
            work(std::uint8_t{});
            break;
        case Depth::Short:
            work(std::uint16_t{});
            break;
        case Depth::Float:
            work(float{});
            break;
    }
}

/// The median of every fourth known pixel of every fourth row, all channels, in steps of 1/64.
template <typename Channel>
float medianLight(const Picture& source, const Picture& lost)
{
    constexpr int kSteps = 64;
    std::array<std::size_t, 2 * kSteps> counts{};
    std::size_t total = 0;
    const OfxRectI box = source.bounds();
    const int channels = source.channels();
    for (int y = box.y1; y < box.y2; y += 4) {
        const Channel* pixels = source.pixel<Channel>(box.x1, y);
        const std::uint8_t* gone = lost.pixel<std::uint8_t>(box.x1, y);
        for (int x = 0; x < source.width(); x += 4) {
            if (gone[x] != 0) continue;
            for (int c = 0; c < std::min(channels, 3); ++c) {
                const float light = float(pixels[x * channels + c]) / kFullScale<Channel> * kSteps;
                // Written so that NaN is black.
                const float step = light > 0.0f ? std::min(light, 2.0f * kSteps - 1) : 0.0f;
                ++counts[std::size_t(step)];
                ++total;
            }
        }
    }
    std::size_t below = 0;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        below += counts[i];
        if (2 * below > total) return (float(i) + 0.5f) / kSteps;
    }
    return 0.25f;
}

}  // namespace

ToneCurve::ToneCurve(const Picture& source, const Picture& lost)
{
    withChannel(source.depth(), [&]<typename Channel>(Channel) {
        adaptation_ = std::max(medianLight<Channel>(source, lost), 0.02f);
        black_ = std::sqrt(adaptation_);
        scale_ = kWhite / (std::sqrt(1 + adaptation_) - black_);
        if constexpr (!std::is_floating_point_v<Channel>) {
            table_.resize(std::size_t(kFullScale<Channel>) + 1);
            for (std::size_t v = 0; v < table_.size(); ++v) {
                table_[v] = tone(float(v) / kFullScale<Channel>);
            }
        }
    });
}

std::int16_t ToneCurve::tone(float value) const
{
    const float light = value > 0.0f ? value : 0.0f;
    const float tone = (std::sqrt(light + adaptation_) - black_) * scale_;
    return std::int16_t(std::min(tone + 0.5f, kHighest));
}

template <typename Channel>
void ToneCurve::applyRows(const Picture& picture, OfxRectI region, Tones& tones) const
{
    const auto toneOf = [this](Channel value) {
        if constexpr (std::is_floating_point_v<Channel>)
            return tone(value);
        else
            return table_[value];
    };
    const int channels = picture.channels();
    const int second = channels > 1 ? 1 : 0, third = channels > 1 ? 2 : 0;
    for (int y = region.y1; y < region.y2; ++y) {
        const Channel* from = picture.pixel<Channel>(region.x1, y);
        std::int16_t* to = tones.at(0, y - region.y1);
        for (int x = 0; x < tones.width; ++x, from += channels, to += 3) {
            to[0] = toneOf(from[0]);
            to[1] = toneOf(from[second]);
            to[2] = toneOf(from[third]);
        }
    }
}

Tones ToneCurve::apply(const Picture& picture, OfxRectI region) const
{
    Tones tones{region.x2 - region.x1, region.y2 - region.y1, {}};
    tones.values = std::make_unique_for_overwrite<std::int16_t[]>(3 * std::size_t(tones.width) *
                                                                  std::size_t(tones.height));
    withChannel(picture.depth(),
                [&]<typename Channel>(Channel) { applyRows<Channel>(picture, region, tones); });
    return tones;
}

}  // namespace Tesseret::Quality
