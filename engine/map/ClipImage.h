#pragma once

#include "engine/map/Map.h"
#include "engine/map/PixelTypes.h"

namespace Orvane::Engine {

/// A borrowed host image. Destroying it releases the image, so views of its map must be gone by
/// then.
class ClipImage {
public:
    virtual ~ClipImage() = default;
    ClipImage(const ClipImage&) = delete;
    ClipImage& operator=(const ClipImage&) = delete;

    /// The kind of pixel the image holds; never None.
    virtual PixelKind kind() const = 0;

    /// The image as a map, or null when it holds another kind of pixel.
    template <typename Pixel>
    Map<Pixel>* as()
    {
        return kind() == kPixelKind<Pixel> ? static_cast<Map<Pixel>*>(&domain()) : nullptr;
    }

protected:
    ClipImage() = default;
    /// The map, a `Map` of the pixel type that `kind` names.
    virtual MapDomain& domain() = 0;
};

}  // namespace Orvane::Engine
