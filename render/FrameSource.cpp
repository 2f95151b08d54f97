#include "render/FrameSource.h"

#include <cmath>
#include <utility>

#include "files/PictureScale.h"

namespace Tesseret::Render {

namespace {

bool areEqual(const OfxPointD& a, const OfxPointD& b)
{
    return a.x == b.x && a.y == b.y;
}

}  // namespace

FrameSource::FrameSource(const Files::PictureInfo& first, Depth depth, Components components,
                         OfxRangeD range)
    : range_(range), region_(toCanonical(first.dataWindow, {1.0, 1.0}, first.pixelAspectRatio))
{
    format_.depth = depth;
    format_.components = components;
    format_.alpha = first.alpha;
    format_.pixelAspectRatio = first.pixelAspectRatio;
}

void FrameSource::show(int frame, std::shared_ptr<const Picture> picture, OfxPointD scale)
{
    if (picture != picture_ || !areEqual(scale, scale_)) scaled_.reset();
    frame_ = frame;
    picture_ = std::move(picture);
    scale_ = scale;
    region_ = toCanonical(picture_->regionOfDefinition(), scale, format_.pixelAspectRatio);
}

void FrameSource::hide()
{
    picture_.reset();
    scaled_.reset();
}

OfxRectD FrameSource::regionOfDefinition(OfxTime /*time*/) const
{
    return region_;
}

std::shared_ptr<const Picture> FrameSource::picture(OfxTime time, OfxPointD renderScale)
{
    if (!picture_ || std::lround(time) != frame_) return nullptr;
    if (areEqual(renderScale, scale_)) return picture_;
    if (!scaled_ || !areEqual(renderScale, otherScale_)) {
        const OfxPointD factor{renderScale.x / scale_.x, renderScale.y / scale_.y};
        scaled_ = std::make_shared<const Picture>(Files::scaled(*picture_, factor));
        otherScale_ = renderScale;
    }
    return scaled_;
}

}  // namespace Tesseret::Render
