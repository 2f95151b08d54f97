#include "host/Clip.h"

#include <algorithm>
#include <new>

#include "host/EffectObject.h"
#include "host/EmbeddedHost.h"
#include "host/HostError.h"
#include "host/Image.h"
#include "host/Instance.h"

namespace Tesseret::Host {

namespace {

/// Fills what a reshaped picture has no pixel for: whoever reads it should be seen to.
constexpr std::uint8_t kNoise = 0xA5;

std::vector<PropertyValue> ends(const OfxRangeD& range)
{
    return {range.min, range.max};
}

OfxRectI changed(OfxRectI bounds, const OfxRectI& change)
{
    return {bounds.x1 + change.x1, bounds.y1 + change.y1, bounds.x2 + change.x2,
            bounds.y2 + change.y2};
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
    const HostQuirks& quirks = owner_.host().quirks();
    const bool hasFormat = source_ || isOutput() || quirks.allClipsConnected;
    const bool isAlpha = format_.components == Components::Alpha;
    const Components shown =
        isAlpha && quirks.matte == MatteDelivery::Rgba ? Components::RGBA : format_.components;
    const ClipFormat unmapped = source_ ? source_->format() : format_;
    const auto assign = [this](const char* name, std::vector<PropertyValue> values) {
        properties_.assign(name, std::move(values));
    };
    assign(kOfxImageClipPropConnected, {hasFormat ? 1 : 0});
    assign(kOfxImageEffectPropPixelDepth,
           {hasFormat ? depthName(format_.depth) : kOfxBitDepthNone});
    assign(kOfxImageEffectPropComponents,
           {hasFormat ? componentsName(shown) : kOfxImageComponentNone});
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
    switch (quirks.frameRange) {
        case FrameRangeAnswer::Right:
            assign(kOfxImageEffectPropFrameRange, ends(range));
            break;
        case FrameRangeAnswer::Wrong:
            assign(kOfxImageEffectPropFrameRange, {1.0, 10.0});
            break;
        case FrameRangeAnswer::Missing:
            properties_.remove(kOfxImageEffectPropFrameRange);
            break;
    }
}

OfxPointD Clip::renderScale() const
{
    return owner_.instance()->renderScale();
}

Components Clip::deliveredComponents() const
{
    const bool isAlpha = format_.components == Components::Alpha;
    const bool asRgba = isAlpha && owner_.host().quirks().matte != MatteDelivery::Alpha;
    return asRgba ? Components::RGBA : format_.components;
}

OfxStatus Clip::fetch(OfxTime time, OfxPropertySetHandle& image)
{
    EmbeddedHost& host = owner_.host();
    const unsigned int call = host.counts().fetchCalls.fetch_add(1) + 1;
    if (call == host.quirks().failFetch) return kOfxStatFailed;
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
    EmbeddedHost& host = owner_.host();
    std::shared_ptr<const Picture> input;
    if (!output_) {
        input = inputPicture(time, renderScale());
        if (!input) return kOfxStatFailed;
    }
    const bool shared = host.quirks().oneImageSetPerClip;
    std::unique_ptr<Image> made =
        shared && sharedImage_ ? std::move(sharedImage_) : std::make_unique<Image>(*this);
    if (output_) {
        made->showOutput(*output_, renderScale());
    } else {
        made->show(std::move(input), renderScale());
    }
    image = made->handle();
    host.counts().imagesFetched.fetch_add(1);
    if (shared) {
        sharedImage_ = std::move(made);
        ++sharedFetches_;
    } else {
        images_.push_back(std::move(made));
    }
    return kOfxStatOK;
}

std::shared_ptr<const Picture> Clip::inputPicture(OfxTime time, OfxPointD scale) const
{
    std::shared_ptr<const Picture> picture = source_->picture(time, scale);
    if (!picture) return nullptr;
    const Components components = deliveredComponents();
    if (picture->depth() != format_.depth || picture->components() != components) {
        picture = std::make_shared<Picture>(picture->converted(format_.depth, components));
    }
    const HostQuirks& quirks = owner_.host().quirks();
    OfxRectI bounds = picture->bounds();
    if (quirks.boundsChange) bounds = changed(bounds, *quirks.boundsChange);
    if (quirks.deliverRegionsOnly && regionOfInterest_) {
        bounds =
            intersection(bounds, toPixels(*regionOfInterest_, scale, picture->pixelAspectRatio()));
    }
    const bool reshaped = quirks.privateImages || quirks.rowLayout || quirks.boundsChange ||
                          quirks.deliverRegionsOnly;
    return reshaped ? std::make_shared<Picture>(picture->copied(
                          bounds, quirks.rowLayout.value_or(picture->layout()), kNoise))
                    : picture;
}

OfxStatus Clip::regionOfDefinition(OfxTime time, OfxRectD& region)
{
    const RegionAnswer answer = owner_.host().quirks().regionOfDefinition;
    if (answer == RegionAnswer::Refused || !owner_.instance()) return kOfxStatFailed;
    if (isOutput()) {
        region = owner_.instance()->defaultRegionOfDefinition(time);
        return kOfxStatOK;
    }
    if (!source_) return kOfxStatFailed;
    const OfxRangeD range = source_->frameRange();
    if (answer == RegionAnswer::RefusedWithoutImage && (time < range.min || time > range.max)) {
        return kOfxStatFailed;
    }
    region = source_->regionOfDefinition(time);
    return kOfxStatOK;
}

bool Clip::release(const Image& image)
{
    if (&image == sharedImage_.get() && sharedFetches_ > 0) {
        --sharedFetches_;
    } else {
        const auto found = std::find_if(images_.begin(), images_.end(),
                                        [&](const auto& each) { return each.get() == &image; });
        if (found == images_.end()) return false;
        images_.erase(found);
    }
    owner_.host().counts().imagesReleased.fetch_add(1);
    return true;
}

std::size_t Clip::releaseAll()
{
    const std::size_t held = images_.size() + sharedFetches_;
    images_.clear();
    sharedFetches_ = 0;
    return held;
}

}  // namespace Tesseret::Host
