#include "host/command/FrameSource.h"

#include <cmath>
#include <utility>

#include "host/files/PictureScale.h"

namespace Tesseret::Command {

using Host::Picture;

FrameSource::FrameSource(const Files::PictureInfo& first, Host::Depth depth,
                         Host::Components components, OfxRangeD range)
    : range_(range), region_(first.dataWindow)
{
    format_.depth = depth;
    format_.components = components;
    format_.alpha = first.alpha;
    format_.pixelAspectRatio = first.pixelAspectRatio;
}

void FrameSource::show(int frame, std::shared_ptr<const Picture> picture)
{
    frame_ = frame;
    picture_ = std::move(picture);
    region_ = picture_->regionOfDefinition();
    scaled_.reset();
}

OfxRectD FrameSource::regionOfDefinition(OfxTime /*time*/) const
{
    return Host::toCanonical(region_, {1.0, 1.0}, format_.pixelAspectRatio);
}

std::shared_ptr<const Picture> FrameSource::picture(OfxTime time, OfxPointD renderScale)
{
    if (!picture_ || std::lround(time) != frame_) return nullptr;
    if (renderScale.x == 1.0 && renderScale.y == 1.0) return picture_;
    if (!scaled_ || scale_.x != renderScale.x || scale_.y != renderScale.y) {
        scaled_ = std::make_shared<const Picture>(Files::scaled(*picture_, renderScale));
        scale_ = renderScale;
    }
    return scaled_;
}

}  // namespace Tesseret::Command
