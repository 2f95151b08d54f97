#include "host/Image.h"

#include <atomic>
#include <string>

#include "host/Clip.h"
#include "host/EffectObject.h"

namespace Tesseret::Host {

namespace {

std::vector<PropertyValue> edges(const OfxRectI& rect)
{
    return {rect.x1, rect.y1, rect.x2, rect.y2};
}

/// A unique identifier for every fetch.
std::string nextIdentifier()
{
    static std::atomic<unsigned long long> count{0};
    return "image " + std::to_string(count.fetch_add(1));
}

}  // namespace

Image::Image(Clip& clip) : PropertySet(clip.owner().host(), "image of " + clip.name()), clip_(clip)
{}

void Image::show(std::shared_ptr<const Picture> picture, OfxPointD renderScale)
{
    picture_ = std::move(picture);
    // The interface has no const here; a plug-in that writes to an input breaks the standard.
    describe(*picture_, const_cast<std::byte*>(picture_->data()), renderScale);
}

void Image::showOutput(Picture& picture, OfxPointD renderScale)
{
    describe(picture, picture.data(), renderScale);
}

void Image::describe(const Picture& picture, void* data, OfxPointD renderScale)
{
    assign(kOfxPropType, {kOfxTypeImage});
    assign(kOfxImagePropData, {data});
    assign(kOfxImagePropRowBytes, {static_cast<int>(picture.rowBytes())});
    assign(kOfxImagePropBounds, edges(picture.bounds()));
    assign(kOfxImagePropRegionOfDefinition, edges(picture.regionOfDefinition()));
    assign(kOfxImagePropPixelAspectRatio, {picture.pixelAspectRatio()});
    assign(kOfxImagePropField, {kOfxImageFieldNone});
    assign(kOfxImageEffectPropPixelDepth, {depthName(picture.depth())});
    assign(kOfxImageEffectPropComponents, {componentsName(picture.components())});
    assign(kOfxImageEffectPropPreMultiplication, {alphaName(picture.alpha())});
    assign(kOfxImageEffectPropRenderScale, {renderScale.x, renderScale.y});
    assign(kOfxImagePropUniqueIdentifier, {nextIdentifier()});
}

}  // namespace Tesseret::Host
