#pragma once

namespace Orvane::Engine {

/// Where the mask of the region to fill comes from.
enum class MaskOrigin {
    None,         ///< no mask: fill the whole image
    SourceAlpha,  ///< the alpha of the source
    Matte         ///< the matte; without one fill the whole image
};

/// Which mask value is to be filled.
enum class Polarity {
    White,  ///< M
    Black   ///< 0
};

}  // namespace Orvane::Engine
