#pragma once

/// One fetched image, from clipGetImage to clipReleaseImage: its property set, and the pixels for
/// that time.

#include <memory>

#include "host/PropertySet.h"
#include "picture/Picture.h"

namespace Tesseret::Host {

class Clip;

class Image final : public PropertySet {
public:
    explicit Image(Clip& clip);

    Clip& clip() const { return clip_; }
    /// An input image; keeps the picture alive.
    void show(std::shared_ptr<const Picture> picture, OfxPointD renderScale);
    /// The picture being rendered, not owned.
    void showOutput(Picture& picture, OfxPointD renderScale);

private:
    void describe(const Picture& picture, void* data, OfxPointD renderScale);

    Clip& clip_;
    std::shared_ptr<const Picture> picture_;
};

}  // namespace Tesseret::Host
