#include "host/ClipSource.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Tesseret::Host {

StillSource::StillSource(std::shared_ptr<const Picture> picture, OfxRangeD frameRange,
                         double frameRate)
    : picture_(std::move(picture)), frameRange_(frameRange), frameRate_(frameRate)
{}

ClipFormat StillSource::format() const
{
    return {.depth = picture_->depth(),
            .components = picture_->components(),
            .alpha = picture_->alpha(),
            .pixelAspectRatio = picture_->pixelAspectRatio(),
            .frameRate = frameRate_};
}

OfxRectD StillSource::regionOfDefinition(OfxTime /*time*/) const
{
    return toCanonical(picture_->regionOfDefinition(), {1.0, 1.0}, picture_->pixelAspectRatio());
}

std::shared_ptr<const Picture> StillSource::picture(OfxTime time, OfxPointD renderScale)
{
    if (time < frameRange_.min || time > frameRange_.max) return nullptr;
    if (renderScale.x == 1.0 && renderScale.y == 1.0) return picture_;
    const auto scaledRect = [&](const OfxRectI& rect) {
        return toPixels({double(rect.x1), double(rect.y1), double(rect.x2), double(rect.y2)},
                        renderScale, 1.0);
    };
    auto scaled = std::make_shared<Picture>(scaledRect(picture_->bounds()), picture_->depth(),
                                            picture_->components());
    const OfxRectI from = picture_->bounds();
    const OfxRectI to = scaled->bounds();
    const auto nearest = [](int position, double scale, int low, int high) {
        return std::clamp(static_cast<int>(std::floor((position + 0.5) / scale)), low, high - 1);
    };
    for (int y = to.y1; y < to.y2; ++y) {
        const int fromY = nearest(y, renderScale.y, from.y1, from.y2);
        for (int x = to.x1; x < to.x2; ++x) {
            const int fromX = nearest(x, renderScale.x, from.x1, from.x2);
            std::memcpy(scaled->pixel<std::byte>(x, y), picture_->pixel<std::byte>(fromX, fromY),
                        scaled->pixelBytes());
        }
    }
    scaled->setRegionOfDefinition(scaledRect(picture_->regionOfDefinition()));
    scaled->setPixelAspectRatio(picture_->pixelAspectRatio());
    scaled->setAlpha(picture_->alpha());
    return scaled;
}

}  // namespace Tesseret::Host
