#include "files/PictureScale.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace Tesseret::Files {

namespace {

/// The weight of a source pixel in a new one.
struct Share {
    int position;
    float weight;
};

/// For each new position the old positions that it covers, with weights that sum to 1.
std::vector<std::vector<Share>> coverage(int newFirst, int newEnd, int oldFirst, int oldEnd,
                                         double factor)
{
    std::vector<std::vector<Share>> all;
    for (int position = newFirst; position < newEnd; ++position) {
        const double low = std::max(position / factor, double(oldFirst));
        const double high = std::min((position + 1) / factor, double(oldEnd));
        std::vector<Share> shares;
        const int first = std::clamp(static_cast<int>(std::floor(low)), oldFirst, oldEnd - 1);
        const int end = std::clamp(static_cast<int>(std::ceil(high)), first + 1, oldEnd);
        for (int old = first; old < end; ++old) {
            const double covered = std::min(high, old + 1.0) - std::max(low, double(old));
            const double weight = end - first == 1 ? 1.0 : covered / (high - low);
            shares.push_back({old, static_cast<float>(weight)});
        }
        all.push_back(std::move(shares));
    }
    return all;
}

template <typename Channel>
Channel stored(float value)
{
    if constexpr (std::is_floating_point_v<Channel>) return value;
    return static_cast<Channel>(std::lround(value));
}

template <typename Channel>
void fill(const Picture& from, Picture& to, OfxPointD factor)
{
    const OfxRectI old = from.bounds();
    const OfxRectI bounds = to.bounds();
    const auto columns = coverage(bounds.x1, bounds.x2, old.x1, old.x2, factor.x);
    const auto rows = coverage(bounds.y1, bounds.y2, old.y1, old.y2, factor.y);
    const int channels = from.channels();
    std::vector<float> row(static_cast<std::size_t>(from.width()) *
                           static_cast<std::size_t>(channels));
    for (int y = bounds.y1; y < bounds.y2; ++y) {
        std::ranges::fill(row, 0.0f);
        for (const Share& share : rows[static_cast<std::size_t>(y - bounds.y1)]) {
            const auto* source = reinterpret_cast<const Channel*>(from.row(share.position));
            for (std::size_t i = 0; i < row.size(); ++i) {
                row[i] += share.weight * static_cast<float>(source[i]);
            }
        }
        auto* target = reinterpret_cast<Channel*>(to.row(y));
        for (const auto& shares : columns) {
            for (int c = 0; c < channels; ++c) {
                float sum = 0.0f;
                for (const Share& share : shares) {
                    const int place = (share.position - old.x1) * channels + c;
                    sum += share.weight * row[static_cast<std::size_t>(place)];
                }
                *target++ = stored<Channel>(sum);
            }
        }
    }
}

}  // namespace

Picture scaled(const Picture& picture, OfxPointD factor)
{
    const auto scaledRect = [factor](const OfxRectI& r) {
        return toPixels({double(r.x1), double(r.y1), double(r.x2), double(r.y2)}, factor, 1.0);
    };
    Picture result(scaledRect(picture.bounds()), picture.depth(), picture.components());
    result.setRegionOfDefinition(scaledRect(picture.regionOfDefinition()));
    result.setPixelAspectRatio(picture.pixelAspectRatio());
    result.setAlpha(picture.alpha());
    switch (picture.depth()) {
        case Depth::Byte:
            fill<std::uint8_t>(picture, result, factor);
            break;
        case Depth::Short:
            fill<std::uint16_t>(picture, result, factor);
            break;
        case Depth::Float:
            fill<float>(picture, result, factor);
            break;
    }
    return result;
}

}  // namespace Tesseret::Files
