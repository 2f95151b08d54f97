#pragma once

namespace Orvane::Engine {

/// Where the mask of the region to fill comes from.
enum class MaskOrigin {
    None,         ///< there is no mask: the whole image is filled
    SourceAlpha,  ///< the alpha of the source
    Matte         ///< the matte; without one the whole image is filled
};

enum class MaskSense {
    AsItIs,   ///< M is to be filled
    Inverted  ///< 0 is to be filled
};

}  // namespace Orvane::Engine
