#include "engine/mask/AlphaMask.h"

#include <algorithm>

#include "engine/map/MapRow.h"

namespace Orvane::Engine {
namespace {

/// `alpha` cut to [0, M]: only floats lie outside. NaN is not masked.
template <typename Pixel>
typename PixelTraits<Pixel>::Mask maskValue(typename PixelTraits<Pixel>::Channel alpha,
                                            MaskSense sense)
{
    using Traits = PixelTraits<Pixel>;
    const auto value = static_cast<float>(alpha);
    const float cut = value > 0.0f ? std::min(value, Traits::kMax) : 0.0f;
    return Traits::stored(sense == MaskSense::Inverted ? Traits::kMax - cut : cut);
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
        const RowReader picture(this->other(), y);
        RowWriter mask(this->target(), y);
        for (int x = region.x0; x < region.x1; ++x) {
            mask[x] = maskValue<Pixel>(picture[x].a, sense_);
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
void extractMask(const Map<Pixel>& picture, MaskSense sense, RenderStatus* statusRecord,
                 Map<typename PixelTraits<Pixel>::Mask>& mask)
{
    mask.copyGeometry(picture);
    mask.setFillValue(meanOf(picture.fillValue()));
    mask.allocate();
    AlphaMask<Pixel> extraction(sense);
    extraction.setStatusRecord(statusRecord);
    extraction.process(&picture, &mask);
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
    template void extractMask<Pixel>(const Map<Pixel>&, MaskSense, RenderStatus*,        \
                                     Map<PixelTraits<Pixel>::Mask>&);                    \
    template void invertMask<Pixel>(const Map<PixelTraits<Pixel>::Mask>&, RenderStatus*, \
                                    Map<PixelTraits<Pixel>::Mask>&);
TESSERET_INSTANTIATE(PixelRGBA8)
TESSERET_INSTANTIATE(PixelRGBA16)
TESSERET_INSTANTIATE(PixelRGBAf)
#undef TESSERET_INSTANTIATE

}  // namespace Orvane::Engine
