#pragma once

#include <memory>
#include <optional>
#include <variant>

#include "engine/map/ClipImage.h"
#include "engine/mask/AlphaMask.h"

namespace Orvane::Engine {

/// The mask of the region to fill: from the source's alpha or a matte, converted into one solid
/// region. `Pixel` is the kind of the render; a matte of another depth is read at its own depth.
template <typename Pixel>
class RegionMask {
public:
    /// Takes the mask from the source's alpha; `source` is only read.
    void takeSourceAlpha(const Map<Pixel>& source, Polarity polarity, RenderStatus& status);
    /// Takes the mask from a matte; null means no mask.
    void takeMatte(std::unique_ptr<ClipImage> matte, Polarity polarity, RenderStatus& status);
    /// Whether a mask was taken.
    bool exists() const { return !std::holds_alternative<std::monostate>(mask_); }
    /// The solid region, M of the render's depth inside and 0 elsewhere; nothing after an abort.
    std::optional<Map<Pixel32f>> prepare(int seed, RenderStatus& status);

private:
    template <typename MattePixel>
    bool takeAlpha(Polarity polarity, RenderStatus& status);
    template <typename MattePixel>
    bool takeGrey(Polarity polarity, RenderStatus& status);

    std::unique_ptr<ClipImage> matte_;  ///< outlives the mask, which may be a view of it
    std::variant<std::monostate, Map<Pixel8>, Map<Pixel16>, Map<Pixel32f>> mask_;
};

}  // namespace Orvane::Engine
