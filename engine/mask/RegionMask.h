#pragma once

#include <memory>
#include <optional>
#include <variant>

#include "engine/map/ClipImage.h"
#include "engine/mask/AlphaMask.h"

namespace Orvane::Engine {

/// The mask of the region to fill: out of the source's alpha or from a matte, then made into one
/// solid region. `Pixel` is the kind of the render; a matte of another depth is taken as it is.
template <typename Pixel>
class RegionMask {
public:
    /// Takes the mask out of the source's alpha; `source` is only read.
    void takeSourceAlpha(const Map<Pixel>& source, MaskSense sense, RenderStatus& status);
    /// Takes the mask from a matte, which may be null: there is no mask then.
    void takeMatte(std::unique_ptr<ClipImage> matte, MaskSense sense, RenderStatus& status);
    /// Whether a mask was taken.
    bool exists() const { return !std::holds_alternative<std::monostate>(mask_); }
    /// The solid region, M of the render's depth inside and 0 elsewhere; nothing after an abort.
    std::optional<Map<Pixel32f>> prepare(int seed, RenderStatus& status);

private:
    template <typename MattePixel>
    bool takeAlpha(MaskSense sense, RenderStatus& status);
    template <typename MattePixel>
    bool takeGrey(MaskSense sense, RenderStatus& status);

    std::unique_ptr<ClipImage> matte_;  ///< outlives the mask, which may be a view of it
    std::variant<std::monostate, Map<Pixel8>, Map<Pixel16>, Map<Pixel32f>> mask_;
};

}  // namespace Orvane::Engine
