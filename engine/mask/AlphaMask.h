#pragma once

#include "engine/map/PixelTraits.h"
#include "engine/mask/MaskOrigin.h"
#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// Makes a mask from an image's alpha, clamped to [0, M]. `Pixel` is the image's kind; the mask is
/// the single-channel kind of the same depth.
template <typename Pixel>
class AlphaMask final : public Sampler<const Map<Pixel>, Map<typename PixelTraits<Pixel>::Mask>> {
public:
    explicit AlphaMask(Polarity polarity) : polarity_(polarity) {}
    void processPass() override;

private:
    Polarity polarity_;
};

/// Writes M minus a mask into another map; a host image is never written to.
template <typename Pixel>
class InvertedMask final : public Sampler<const Map<typename PixelTraits<Pixel>::Mask>,
                                          Map<typename PixelTraits<Pixel>::Mask>> {
public:
    void processPass() override;
};

/// Makes `mask` the alpha of `image`, with the image's geometry and storage of its own. Its
/// fill value is the mean of R, G and B of the image's.
template <typename Pixel>
void extractMask(const Map<Pixel>& image, Polarity polarity, RenderStatus* statusRecord,
                 Map<typename PixelTraits<Pixel>::Mask>& mask);

/// Makes `mask` the inversion of `matte`, with the matte's geometry and storage of its own.
template <typename Pixel>
void invertMask(const Map<typename PixelTraits<Pixel>::Mask>& matte, RenderStatus* statusRecord,
                Map<typename PixelTraits<Pixel>::Mask>& mask);

}  // namespace Orvane::Engine
