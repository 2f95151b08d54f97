#include "host/Clip.h"

#include <algorithm>
#include <new>
#include <utility>

#include "host/EffectObject.h"
#include "host/EmbeddedHost.h"
#include "host/HostError.h"
#include "host/Image.h"
#include "host/Instance.h"

namespace Tesseret::Host {

namespace {

std::vector<PropertyValue> ends(const OfxRangeD& range)
{
    return {range.min, range.max};
}

}  // namespace

Clip::Clip(EffectObject& owner, std::string name)
    : owner_(owner),
      name_(std::move(name)),
      handle_(HandleKind::Clip, this),
      properties_(owner.host(), "clip " + name_)
{
    defineDescriptor();
}

Clip::Clip(EffectObject& owner, const Clip& described)
    : owner_(owner),
      name_(described.name_),
      handle_(HandleKind::Clip, this),
      properties_(owner.host(), "clip " + name_)
{
    properties_.copyFrom(described.properties_);
}

Clip::~Clip() = default;

void Clip::defineDescriptor()
{
    properties_.define(kOfxPropType, {kOfxTypeClip}, Access::ReadOnly);
    properties_.define(kOfxPropName, {name_}, Access::ReadOnly);
    properties_.define(kOfxPropLabel, {name_});
    properties_.defineList(kOfxImageEffectPropSupportedComponents, PropertyType::String);
    properties_.define(kOfxImageEffectPropTemporalClipAccess, {0});
    properties_.define(kOfxImageClipPropOptional, {0});
    properties_.define(kOfxImageClipPropIsMask, {0});
    properties_.define(kOfxImageClipPropFieldExtraction, {kOfxImageFieldDoubled});
    properties_.define(kOfxImageEffectPropSupportsTiles, {1});
}

bool Clip::isOutput() const
{
    return name_ == kOfxImageEffectOutputClipName;
}

bool Clip::isOptional() const
{
    return properties_.intOr(kOfxImageClipPropOptional, 0) != 0;
}

void Clip::updateProperties(OfxRangeD frames)
{
    const bool hasFormat = source_ || isOutput();
    const ClipFormat unmapped = source_ ? source_->format() : format_;
    const auto assign = [this](const char* name, std::vector<PropertyValue> values) {
        properties_.assign(name, std::move(values));
    };
    assign(kOfxImageClipPropConnected, {hasFormat ? 1 : 0});
    assign(kOfxImageEffectPropPixelDepth,
           {hasFormat ? depthName(format_.depth) : kOfxBitDepthNone});
    assign(kOfxImageEffectPropComponents,
           {hasFormat ? componentsName(format_.components) : kOfxImageComponentNone});
    assign(kOfxImageClipPropUnmappedPixelDepth,
           {hasFormat ? depthName(unmapped.depth) : kOfxBitDepthNone});
    assign(kOfxImageClipPropUnmappedComponents,
           {hasFormat ? componentsName(unmapped.components) : kOfxImageComponentNone});
    assign(kOfxImageEffectPropPreMultiplication, {alphaName(format_.alpha)});
    assign(kOfxImagePropPixelAspectRatio, {format_.pixelAspectRatio});
    assign(kOfxImageEffectPropFrameRate, {format_.frameRate});
    assign(kOfxImageEffectPropUnmappedFrameRate, {unmapped.frameRate});
    assign(kOfxImageClipPropFieldOrder, {format_.fieldOrder});
    assign(kOfxImageClipPropContinuousSamples, {0});
    const OfxRangeD range = source_ ? source_->frameRange() : frames;
    assign(kOfxImageEffectPropUnmappedFrameRange, ends(range));
    assign(kOfxImageEffectPropFrameRange, ends(range));
}

OfxPointD Clip::renderScale() const
{
    return owner_.instance()->renderScale();
}

OfxStatus Clip::fetch(OfxTime time, OfxPropertySetHandle& image)
{
    EmbeddedHost& host = owner_.host();
    if (const OfxStatus status = host.behaviour().checkFetch(*this)) return status;
    if (!owner_.instance() || !isConnected()) return kOfxStatFailed;
    try {
        return makeImage(time, image);
    } catch (const std::bad_alloc&) {
        return kOfxStatErrMemory;
    } catch (const HostError& error) {
        host.report(Report::Kind::Note, "clipGetImage: " + name_ + ": " + error.what());
        return error.status().value_or(kOfxStatFailed);
    } catch (const PictureError& error) {
        host.report(Report::Kind::Note, "clipGetImage: " + name_ + ": " + error.what());
        return error.isOutOfMemory() ? kOfxStatErrMemory : kOfxStatFailed;
    }
}

OfxStatus Clip::makeImage(OfxTime time, OfxPropertySetHandle& image)
{
    HostBehaviour& behaviour = owner_.host().behaviour();
    std::shared_ptr<const Picture> input;
    if (!output_) {
        input = source_->picture(time, renderScale());
        if (!input) return kOfxStatFailed;
        input = behaviour.inputPicture(*this, std::move(input), renderScale());
    }
    Fetched& made = nextImage();
    if (output_) {
        made.image->showOutput(*output_, renderScale());
    } else {
        made.image->show(std::move(input), renderScale());
    }
    behaviour.imageFetched(*made.image);
    ++made.fetches;
    image = made.image->handle();
    return kOfxStatOK;
}

Clip::Fetched& Clip::nextImage()
{
    const bool isShared = owner_.host().behaviour().sharesImageSet();
    if (!isShared || images_.empty()) images_.push_back({std::make_unique<Image>(*this)});
    return images_.back();
}

OfxStatus Clip::regionOfDefinition(OfxTime time, OfxRectD& region)
{
    if (!owner_.instance()) return kOfxStatFailed;
    if (const OfxStatus status = owner_.host().behaviour().checkRegion(*this, time)) return status;
    if (isOutput()) {
        region = owner_.instance()->defaultRegionOfDefinition(time);
        return kOfxStatOK;
    }
    if (!source_) return kOfxStatFailed;
    region = source_->regionOfDefinition(time);
    return kOfxStatOK;
}

bool Clip::release(const Image& image)
{
    const auto found = std::find_if(images_.begin(), images_.end(),
                                    [&](const auto& each) { return each.image.get() == &image; });
    if (found == images_.end() || found->fetches == 0) return false;
    HostBehaviour& behaviour = owner_.host().behaviour();
    if (--found->fetches == 0 && !behaviour.sharesImageSet()) images_.erase(found);
    behaviour.imageReleased(*this);
    return true;
}

std::size_t Clip::releaseAll()
{
    std::size_t held = 0;
    for (Fetched& each : images_) held += std::exchange(each.fetches, 0);
    if (!owner_.host().behaviour().sharesImageSet()) images_.clear();
    return held;
}

}  // namespace Tesseret::Host
