#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string_view>

#include "render/MapPicture.h"

namespace Tesseret::Render {

/// A picture of a map or path; grey pictures have three equal channels.
struct FillPicture {
    std::string_view name;
    std::shared_ptr<const Picture> picture;
    bool isColour = false;
};

/// Makes pictures of the maps and the path of fills, one fill after another.
class FillPictures {
public:
    static constexpr std::string_view kFillMask = "fill-mask";
    static constexpr std::string_view kPathBand = "path-band";
    static constexpr std::string_view kBlocks = "blocks";
    static constexpr std::string_view kPath = "boundary-path";
    static constexpr std::string_view kCompositeMask = "composite-mask";
    static constexpr std::string_view kGain = "luminance-gain";
    static constexpr std::array kAll{kFillMask, kPathBand, kBlocks, kPath, kCompositeMask, kGain};

    /// Before each fill.
    void restart() { *this = {}; }
    /// Returns nullopt for a map of another name.
    std::optional<FillPicture> make(const TesseretMapV1& map);
    FillPicture make(const TesseretPathV1& path) const;
    /// The range of a gain where the texture is used.
    MapRange usedRange(const TesseretMapV1& gain) const;

private:
    using Shared = std::shared_ptr<const Picture>;

    Shared region_, band_;  ///< the path's background; null until reported
    Shared used_;           ///< the composite mask, for the gain
};

}  // namespace Tesseret::Render
