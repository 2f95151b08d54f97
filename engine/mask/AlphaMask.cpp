#include "engine/mask/AlphaMask.h"

#include <algorithm>

#include "engine/map/MapRow.h"

namespace Orvane::Engine {
namespace {

/// The mask value of an alpha clamped to [0, M]; only floats lie outside. NaN counts as 0.
template <typename Pixel>
typename PixelTraits<Pixel>::Mask maskValue(typename PixelTraits<Pixel>::Channel alpha,
                                            Polarity polarity)
{
    using Traits = PixelTraits<Pixel>;
    const auto value = static_cast<float>(alpha);
    const float clamped = value > 0.0f ? std::min(value, Traits::kMax) : 0.0f;
    return Traits::stored(polarity == Polarity::Black ? Traits::kMax - clamped : clamped);
}

template <typename Pixel>
typename PixelTraits<Pixel>::Mask meanOf(const Pixel& p)
{
    return static_cast<typename PixelTraits<Pixel>::Mask>((p.r + p.g + p.b) / 3);
}

}  // namespace

template <typename Pixel>
void AlphaMask<Pixel>::processPass()
{
    const Region& region = this->region();
    const auto [yBegin, yEnd] = this->threadRows();
    for (int y = yBegin; y < yEnd; ++y) {
        const RowReader image(this->other(), y);
        RowWriter mask(this->target(), y);
        for (int x = region.x0; x < region.x1; ++x) {
            mask[x] = maskValue<Pixel>(image[x].a, polarity_);
        }
    }
}

template <typename Pixel>
void InvertedMask<Pixel>::processPass()
{
    using Traits = PixelTraits<Pixel>;
    const Region& region = this->region();
    const auto [yBegin, yEnd] = this->threadRows();
    for (int y = yBegin; y < yEnd; ++y) {
        const RowReader matte(this->other(), y);
        RowWriter mask(this->target(), y);
        for (int x = region.x0; x < region.x1; ++x) {
            mask[x] = Traits::stored(Traits::kMax - static_cast<float>(matte[x]));
        }
    }
}

template <typename Pixel>
void extractMask(const Map<Pixel>& image, Polarity polarity, RenderStatus* statusRecord,
                 Map<typename PixelTraits<Pixel>::Mask>& mask)
{
    mask.copyGeometry(image);
    mask.setFillValue(meanOf(image.fillValue()));
    mask.allocate();
    AlphaMask<Pixel> extraction(polarity);
    extraction.setStatusRecord(statusRecord);
    extraction.process(&image, &mask);
}

template <typename Pixel>
void invertMask(const Map<typename PixelTraits<Pixel>::Mask>& matte, RenderStatus* statusRecord,
                Map<typename PixelTraits<Pixel>::Mask>& mask)
{
    mask.copyGeometry(matte);
    mask.setFillValue(matte.fillValue());
    mask.allocate();
    InvertedMask<Pixel> inversion;
    inversion.setStatusRecord(statusRecord);
    inversion.process(&matte, &mask);
}

#define TESSERET_INSTANTIATE(Pixel)                                                      \
    template class AlphaMask<Pixel>;                                                     \
    template class InvertedMask<Pixel>;                                                  \
    template void extractMask<Pixel>(const Map<Pixel>&, Polarity, RenderStatus*,         \
                                     Map<PixelTraits<Pixel>::Mask>&);                    \
    template void invertMask<Pixel>(const Map<PixelTraits<Pixel>::Mask>&, RenderStatus*, \
                                    Map<PixelTraits<Pixel>::Mask>&);
TESSERET_INSTANTIATE(PixelRGBA8)
TESSERET_INSTANTIATE(PixelRGBA16)
TESSERET_INSTANTIATE(PixelRGBAf)
#undef TESSERET_INSTANTIATE

}  // namespace Orvane::Engine
