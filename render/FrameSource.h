#pragma once

#include "host/ClipSource.h"
#include "render/JobInputs.h"

namespace Tesseret::Render {

/// An input clip that holds the picture of the frame being rendered, and no other.
class FrameSource final : public Host::ClipSource {
public:
    /// Takes the clip's format from its first frame. Both ends of the range are included.
    FrameSource(const Files::PictureInfo& first, Depth depth, Components components,
                OfxRangeD range);

    /// Sets the picture to return, for this frame only; in pixels of `scale`.
    void show(int frame, std::shared_ptr<const Picture> picture, OfxPointD scale = {1.0, 1.0});
    /// Releases the picture; there is none until the next `show`.
    void hide();

    Host::ClipFormat format() const override { return format_; }
    OfxRangeD frameRange() const override { return range_; }
    OfxRectD regionOfDefinition(OfxTime time) const override;
    std::shared_ptr<const Picture> picture(OfxTime time, OfxPointD renderScale) override;

private:
    Host::ClipFormat format_;
    OfxRangeD range_;
    OfxRectD region_;  ///< canonical
    int frame_ = 0;
    std::shared_ptr<const Picture> picture_;
    OfxPointD scale_{1.0, 1.0};              ///< of picture_
    std::shared_ptr<const Picture> scaled_;  ///< at `otherScale_`, the last other scale requested
    OfxPointD otherScale_{1.0, 1.0};
};

}  // namespace Tesseret::Render
