#pragma once

#include <memory>
#include <optional>
#include <variant>

#include "engine/RenderContext.h"
#include "engine/map/ClipImage.h"
#include "engine/mask/AlphaMask.h"

namespace Orvane::Engine {

/// The mask that "fillRegion" asks for: out of the source's alpha or from a matte, then made into
/// one solid region. `Pixel` is the kind of the render; a matte of another depth is taken as it is.
template <typename Pixel>
class RegionMask {
public:
    /// Takes the mask for a choice of "fillRegion"; `source` is only read and must outlive this.
    void fetch(RenderContext& context, int choice, const Map<Pixel>& source);
    /// Whether there is one: not for "Entire Image", and not for a matte that is not there.
    bool exists() const { return !std::holds_alternative<std::monostate>(mask_); }
    /// The solid region, M of the render's depth inside and 0 elsewhere; nothing after an abort.
    std::optional<Map<Pixel32f>> prepare(int seed, RenderStatus& status);

private:
    void takeMatte(MaskSense sense, RenderStatus& status);
    template <typename MattePixel>
    bool takeAlpha(MaskSense sense, RenderStatus& status);
    template <typename MattePixel>
    bool takeGrey(MaskSense sense, RenderStatus& status);

    std::unique_ptr<ClipImage> matte_;  ///< outlives the mask, which may be a view of it
    std::variant<std::monostate, Map<Pixel8>, Map<Pixel16>, Map<Pixel32f>> mask_;
};

}  // namespace Orvane::Engine
