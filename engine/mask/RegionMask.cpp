#include "engine/mask/RegionMask.h"

#include <algorithm>
#include <utility>

#include "engine/map/MapRow.h"
#include "engine/mask/FillMask.h"

namespace Orvane::Engine {
namespace {

/// Changes the value of a solid mask's region.
void setRegionValue(Map<Pixel32f>& mask, float value)
{
    if (!mask.isUsable()) return;
    const Region stored = mask.storedExtent();
    for (int y = stored.y0; y < stored.y1; ++y) {
        Pixel32f* const row = RowWriter(mask, y).from(stored.x0);
        std::transform(row, row + (stored.x1 - stored.x0), row,
                       [value](Pixel32f v) { return v != 0.0f ? value : v; });
    }
}

}  // namespace

template <typename Pixel>
void RegionMask<Pixel>::takeSourceAlpha(const Map<Pixel>& source, Polarity polarity,
                                        RenderStatus& status)
{
    using Mask = typename PixelTraits<Pixel>::Mask;
    extractMask(source, polarity, &status, mask_.template emplace<Map<Mask>>());
}

/// A matte has one channel; of one with four channels alpha is used.
template <typename Pixel>
void RegionMask<Pixel>::takeMatte(std::unique_ptr<ClipImage> matte, Polarity polarity,
                                  RenderStatus& status)
{
    matte_ = std::move(matte);
    if (matte_ == nullptr) return;
    [[maybe_unused]] const bool taken =
        takeGrey<PixelRGBA8>(polarity, status) || takeGrey<PixelRGBA16>(polarity, status) ||
        takeGrey<PixelRGBAf>(polarity, status) || takeAlpha<PixelRGBA8>(polarity, status) ||
        takeAlpha<PixelRGBA16>(polarity, status) || takeAlpha<PixelRGBAf>(polarity, status);
}

template <typename Pixel>
template <typename MattePixel>
bool RegionMask<Pixel>::takeAlpha(Polarity polarity, RenderStatus& status)
{
    const Map<MattePixel>* image = matte_->as<MattePixel>();
    if (image == nullptr) return false;
    using Mask = typename PixelTraits<MattePixel>::Mask;
    extractMask(*image, polarity, &status, mask_.template emplace<Map<Mask>>());
    return true;
}

template <typename Pixel>
template <typename MattePixel>
bool RegionMask<Pixel>::takeGrey(Polarity polarity, RenderStatus& status)
{
    using Mask = typename PixelTraits<MattePixel>::Mask;
    Map<Mask>* matte = matte_->as<Mask>();
    if (matte == nullptr) return false;
    auto& mask = mask_.template emplace<Map<Mask>>();
    if (polarity == Polarity::Black) {
        invertMask<MattePixel>(*matte, &status, mask);
    } else {
        mask.assign(*matte);
    }
    return true;
}

template <typename Pixel>
std::optional<Map<Pixel32f>> RegionMask<Pixel>::prepare(int seed, RenderStatus& status)
{
    const auto prepared = [&]<typename Mask>(Map<Mask>& mask) {
        auto region = prepareFillMask(mask, seed, &status);
        constexpr float kMax = PixelTraits<Pixel>::kMax;
        if (region && MaskTraits<Mask>::kMax != kMax) setRegionValue(*region, kMax);
        return region;
    };
    if (auto* mask = std::get_if<Map<Pixel8>>(&mask_)) return prepared(*mask);
    if (auto* mask = std::get_if<Map<Pixel16>>(&mask_)) return prepared(*mask);
    if (auto* mask = std::get_if<Map<Pixel32f>>(&mask_)) return prepared(*mask);
    return std::nullopt;
}

template class RegionMask<PixelRGBA8>;
template class RegionMask<PixelRGBA16>;
template class RegionMask<PixelRGBAf>;

}  // namespace Orvane::Engine
