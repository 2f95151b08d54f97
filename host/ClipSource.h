#pragma once

/// Where the pictures of an input clip come from. Called on the rendering threads, by one at a time
/// for each instance; a source that instances on several threads share must allow concurrent calls.

#include <memory>

#include "picture/Picture.h"

namespace Tesseret::Host {

/// What is known of a clip before any image is fetched.
struct ClipFormat {
    Depth depth = Depth::Byte;
    Components components = Components::RGBA;
    Alpha alpha = Alpha::Unpremultiplied;
    double pixelAspectRatio = 1.0;
    double frameRate = 25.0;
    const char* fieldOrder = kOfxImageFieldNone;
};

class ClipSource {
public:
    virtual ~ClipSource() = default;
    virtual ClipFormat format() const = 0;
    /// Including both ends.
    virtual OfxRangeD frameRange() const = 0;
    /// In canonical units.
    virtual OfxRectD regionOfDefinition(OfxTime time) const = 0;
    /// The picture at a time, in pixels of the render scale, or null where there is none. Throws
    /// HostError when it should exist and cannot be read; the fetch then fails.
    virtual std::shared_ptr<const Picture> picture(OfxTime time, OfxPointD renderScale) = 0;
};

/// One picture, the same at every time of the range and only for render scale 1; at another scale
/// the nearest pixels of it.
class StillSource final : public ClipSource {
public:
    explicit StillSource(std::shared_ptr<const Picture> picture, OfxRangeD frameRange = {0.0, 0.0},
                         double frameRate = 25.0);
    ClipFormat format() const override;
    OfxRangeD frameRange() const override { return frameRange_; }
    OfxRectD regionOfDefinition(OfxTime time) const override;
    std::shared_ptr<const Picture> picture(OfxTime time, OfxPointD renderScale) override;

private:
    std::shared_ptr<const Picture> picture_;
    OfxRangeD frameRange_;
    double frameRate_;
};

}  // namespace Tesseret::Host
