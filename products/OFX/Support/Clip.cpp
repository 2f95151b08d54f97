#include "products/OFX/Support/Clip.h"

#include <array>
#include <utility>

#include "products/OFX/Support/Host.h"
#include "products/OFX/Support/Image.h"
#include "products/OFX/Support/InstanceRecord.h"

namespace Orvane {
namespace {

// The supported components, as effects name them.
constexpr const char* kComponentsRGBA = "RGBA";
constexpr const char* kComponentsAlpha = "alpha";

void writeFieldExtraction(const OvOfxPropertySet& properties, int fieldExtraction)
{
    static constexpr std::array kNames = {kOfxImageFieldBoth, kOfxImageFieldSingle,
                                          kOfxImageFieldDoubled};
    const auto index = static_cast<std::size_t>(fieldExtraction);
    if (fieldExtraction < 0 || index >= kNames.size()) return;
    properties.setString(kOfxImageClipPropFieldExtraction, kNames[index]);
}

const char* componentsToHost(const std::string& name)
{
    if (name == kComponentsRGBA) return kOfxImageComponentRGBA;
    if (name == kComponentsAlpha) return kOfxImageComponentAlpha;
    return nullptr;
}

}  // namespace

OvOfxClipHandle::OvOfxClipHandle(const OvOfxInstanceRecord& record, std::string name, bool isOutput)
    : name_(std::move(name)),
      clip_(record.clipHandle(name_.c_str())),
      record_(&record),
      isOutput_(isOutput)
{
    if (clip_ == nullptr) return;
    OfxPropertySetHandle properties = nullptr;  // decides, whatever status the host returns
    hostDescription().suites.imageEffect->clipGetPropertySet(clip_, &properties);
    properties_ = OvOfxPropertySet(properties);
}

std::unique_ptr<Engine::ClipImage> OvOfxClipAccessor::image(double time, const OvRect* region,
                                                            std::optional<double>* aspect) const
{
    return excludingRange(time) ? nullptr : clip_.imageAsMap(time, region, aspect);
}

std::optional<OvFrameRange> OvOfxClipAccessor::excludingRange(double time) const
{
    if (!hostDescription().quirks.frameRangesDecide) return std::nullopt;
    const std::optional<OvFrameRange> range = clip_.frameRange();
    // The range is kept in single precision, so the time is compared in single precision.
    const auto frame = static_cast<float>(time);
    return range && !(range->first <= frame && frame <= range->last) ? range : std::nullopt;
}

OvRect OvOfxClipAccessor::pixelRegionOfDefinition(double time, double aspect) const
{
    OvRect region = clip_.regionOfDefinition(time);
    region.xMin = static_cast<float>(region.xMin / aspect);
    region.xMax = static_cast<float>(region.xMax / aspect);
    return region;
}

bool OvOfxClipAccessor::isConnected() const
{
    return clip_.isConnected();
}

OvOfxClip::OvOfxClip(const std::string& objectName) : OvOfxCoded(objectName), clipName(objectName)
{}

bool OvOfxClip::isConnected() const
{
    const OvOfxClipHandle* bound = boundHandle();
    return bound != nullptr && bound->properties().isSet(kOfxImageClipPropConnected);
}

OvRect OvOfxClip::regionOfDefinition(double time) const
{
    const OvOfxClipHandle* bound = boundHandle();
    if (bound == nullptr) return {};
    OfxRectD region{};
    const OfxStatus status = hostDescription().suites.imageEffect->clipGetRegionOfDefinition(
        bound->clip(), time, &region);
    return status == kOfxStatOK ? fromOfx(region) : OvRect{};
}

std::optional<OvFrameRange> OvOfxClip::frameRange() const
{
    std::array<double, 2> range{};
    const OvOfxClipHandle* bound = boundHandle();
    if (bound == nullptr ||
        bound->properties().getDoubles(kOfxImageEffectPropFrameRange, range) != kOfxStatOK) {
        return std::nullopt;
    }
    return OvFrameRange{.first = static_cast<float>(range[0]),
                        .last = static_cast<float>(range[1])};
}

double OvOfxClip::frameRate() const
{
    const OvOfxClipHandle* bound = boundHandle();
    return bound != nullptr ? bound->properties().doubleOr(kOfxImageEffectPropFrameRate, 0.0) : 0.0;
}

OvComponents OvOfxClip::components() const
{
    const OvOfxClipHandle* bound = boundHandle();
    if (bound == nullptr) return OvComponents::None;
    return componentsFromName(
        bound->properties().stringOr(kOfxImageEffectPropComponents, "").c_str());
}

OvDepth OvOfxClip::pixelDepth() const
{
    const OvOfxClipHandle* bound = boundHandle();
    if (bound == nullptr) return OvDepth::None;
    return depthFromName(bound->properties().stringOr(kOfxImageEffectPropPixelDepth, "").c_str());
}

std::optional<double> OvOfxClip::pixelAspectRatio() const
{
    const OvOfxClipHandle* bound = boundHandle();
    if (bound == nullptr) return std::nullopt;
    return aspectOf(bound->properties(), kOfxImagePropPixelAspectRatio);
}

std::unique_ptr<Engine::ClipImage> OvOfxClip::imageAsMap(double time, const OvRect* region,
                                                         std::optional<double>* aspect) const
{
    const OvOfxClipHandle* bound = boundHandle();
    if (bound == nullptr) return nullptr;
    std::unique_ptr<OvOfxImage> image = OvOfxImage::fetch(*bound, time, region);
    if (image == nullptr) return nullptr;
    if (aspect != nullptr) *aspect = image->pixelAspectRatio();
    return makeImageView(std::move(image), *this);
}

void OvOfxClip::bind(const OvOfxInstanceRecord& record, const char* boundName)
{
    clipHandle = std::make_unique<OvOfxClipHandle>(record, boundName, isA(OvOfxOutputClip::kCode));
}

const OvOfxClipHandle* OvOfxClip::boundHandle() const
{
    const bool bound = inUse && clipHandle != nullptr && clipHandle->clip() != nullptr;
    return bound ? clipHandle.get() : nullptr;
}

OvOfxOutputClip::OvOfxOutputClip() : OvOfxCoded("output")
{
    clipName = kOfxImageEffectOutputClipName;
}

OfxStatus defineClip(OfxImageEffectHandle effect, const OvOfxClip& clip, const char* name,
                     int fieldExtraction)
{
    OfxPropertySetHandle handle = nullptr;
    if (const OfxStatus status =
            hostDescription().suites.imageEffect->clipDefine(effect, name, &handle)) {
        return status;
    }
    const OvOfxPropertySet properties(handle);
    properties.setString(kOfxPropLabel, clip.label.c_str());
    properties.setInt(kOfxImageClipPropOptional, clip.optional ? 1 : 0);
    properties.setInt(kOfxImageClipPropIsMask, clip.isMask ? 1 : 0);
    properties.setInt(kOfxImageEffectPropTemporalClipAccess, clip.temporalAccess ? 1 : 0);
    properties.setInt(kOfxImageEffectPropSupportsTiles, clip.supportsTiles ? 1 : 0);
    writeFieldExtraction(properties, fieldExtraction);
    int index = 0;
    for (const std::string& components : clip.supportedComponents) {
        const char* hostName = componentsToHost(components);
        if (hostName == nullptr) return kOfxStatFailed;
        properties.setString(kOfxImageEffectPropSupportedComponents, hostName, index++);
    }
    return kOfxStatOK;
}

}  // namespace Orvane
