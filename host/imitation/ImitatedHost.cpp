#include "host/imitation/ImitatedHost.h"

#include <algorithm>
#include <cstring>

#include "host/Effect.h"
#include "host/Image.h"
#include "host/ImageMemory.h"
#include "host/Instance.h"
#include "host/Suites.h"

namespace Tesseret::Host {

namespace {

/// Fills new image memory and pixels that a reshaped picture lacks, so that reading them shows in
/// the result.
constexpr int kNoise = 0xA5;
/// Bytes of noise at the start of a new block; filling it all would take too long.
constexpr std::size_t kNoiseBytes = 4096;

/// A status that is none.
constexpr OfxStatus kMeaningless = 22010;

constexpr OfxRectI kEverywhere{kOfxFlagInfiniteMin, kOfxFlagInfiniteMin, kOfxFlagInfiniteMax,
                               kOfxFlagInfiniteMax};

const OfxParameterSuiteV1& parameterSuiteWithoutDerivatives()
{
    static const OfxParameterSuiteV1 kSuite = [] {
        OfxParameterSuiteV1 suite = parameterSuite();
        suite.paramGetDerivative = nullptr;
        suite.paramGetIntegral = nullptr;
        return suite;
    }();
    return kSuite;
}

template <typename Statuses>
OfxStatus statusIn(const Statuses& statuses, std::string_view property)
{
    const auto found = statuses.find(property);
    return found == statuses.end() ? kOfxStatOK : found->second;
}

/// Whether the clip's instance is in the middle of a render: only then has its output a picture.
bool isRendering(const Clip& clip)
{
    const Clip* const output = clip.owner().clip(kOfxImageEffectOutputClipName);
    return output && output->isConnected();
}

OfxStatus callDirectly(EmbeddedHost& host, OfxThreadFunctionV1* function, unsigned int count,
                       void* argument)
{
    try {
        for (unsigned int i = 0; i < count; ++i) function(i, count, argument);
    } catch (...) {
        return host.badCall("multiThread: an exception left the function", kOfxStatFailed);
    }
    return kOfxStatOK;
}

}  // namespace

bool ImitatedHost::acceptsLoad(OfxStatus status)
{
    switch (quirks_.load) {
        case LoadAnswer::OkOnly:
            return status == kOfxStatOK;
        case LoadAnswer::Any:
            return true;
        case LoadAnswer::OkOrDefault:
            break;
    }
    return HostBehaviour::acceptsLoad(status);
}

void ImitatedHost::start(Effect& effect)
{
    HostBehaviour::start(effect);
    if (!quirks_.describeTwice) return;
    effect.sendUnload();
    HostBehaviour::start(effect);
}

void ImitatedHost::prepareInstance(Effect& effect)
{
    if (quirks_.reloadPerInstance) effect.loadAndDescribe();
}

void ImitatedHost::actionSent(std::string_view action, const void* handle, OfxStatus /*status*/)
{
    if (action != kOfxImageEffectActionRender) return;
    const std::lock_guard lock(mutex_);
    rendered_.insert(handle);
}

bool ImitatedHost::showsParameter(const Parameter& parameter, ParameterDescription& description)
{
    if (quirks_.choicesNeedDefaults && !parameter.properties().wasWritten(kOfxParamPropDefault)) {
        description.options.clear();
    }
    return quirks_.showsSecretParameters || !description.secret;
}

const void* ImitatedHost::suiteFetched(const std::string& name, int /*version*/, const void* suite)
{
    if (quirks_.nullDerivativeMembers && suite == &parameterSuite()) {
        suite = &parameterSuiteWithoutDerivatives();
    }
    if (quirks_.missingSuites.contains(name)) suite = nullptr;
    return suite;
}

OfxStatus ImitatedHost::messagePosted(const Message& message, OfxStatus status)
{
    if (message.instance == nullptr && quirks_.nullMessageStatus) return *quirks_.nullMessageStatus;
    return quirks_.messageStatus.value_or(status);
}

OfxStatus ImitatedHost::checkWrite(std::string_view property)
{
    return statusIn(quirks_.refusedWrites, property);
}

OfxStatus ImitatedHost::checkRead(std::string_view property)
{
    return statusIn(quirks_.refusedReads, property);
}

OfxStatus ImitatedHost::checkRegion(const Clip& clip, OfxTime time)
{
    switch (quirks_.regionOfDefinition) {
        case RegionQuirk::Given:
            return kOfxStatOK;
        case RegionQuirk::Refused:
            return kOfxStatFailed;
        case RegionQuirk::RefusedOutsideRender:
            return isRendering(clip) ? kOfxStatOK : kOfxStatFailed;
        case RegionQuirk::RefusedWithoutImage:
            break;
    }
    if (!clip.source()) return kOfxStatOK;
    const OfxRangeD range = clip.source()->frameRange();
    return time < range.min || time > range.max ? kOfxStatFailed : kOfxStatOK;
}

OfxStatus ImitatedHost::checkAllocation(const EffectObject* effect, std::size_t bytes)
{
    if (!effect && quirks_.memoryRefusesNullEffect) return kOfxStatErrBadHandle;
    const bool isFull = quirks_.memoryLimit && bytesLive_ + bytes > *quirks_.memoryLimit;
    return isFull ? kOfxStatErrMemory : kOfxStatOK;
}

OfxStatus ImitatedHost::checkLock(ImageBytes& bytes, bool isLocked)
{
    if (quirks_.memoryMoves && !isLocked) {
        ImageBytes elsewhere(bytes.size());
        std::memcpy(elsewhere.data(), bytes.data(), bytes.size());
        bytes = std::move(elsewhere);
    }
    return kOfxStatOK;
}

OfxStatus ImitatedHost::checkThreadIndex()
{
    return quirks_.threadIndexStatus.value_or(kOfxStatOK);
}

OfxStatus ImitatedHost::checkInteractProperties()
{
    return quirks_.interactHasNoProperties ? kOfxStatErrUnsupported : kOfxStatOK;
}

bool ImitatedHost::acceptsUnknownProperty(std::string_view /*property*/)
{
    return quirks_.acceptUnknownProperties;
}

OfxStatus ImitatedHost::wrongTypeStatus()
{
    return quirks_.wrongType == WrongType::Unknown ? kOfxStatErrUnknown : kOfxStatErrValue;
}

/// Turns an int into a double or back; false when the value is neither.
bool ImitatedHost::convert(PropertyValue& value, PropertyType wanted)
{
    if (quirks_.wrongType != WrongType::Convert) return false;
    if (const int* whole = std::get_if<int>(&value); whole && wanted == PropertyType::Double) {
        value = static_cast<double>(*whole);
        return true;
    }
    if (const double* number = std::get_if<double>(&value); number && wanted == PropertyType::Int) {
        const bool fits = *number > -2147483649.0 && *number < 2147483648.0;
        value = fits ? static_cast<int>(*number) : 0;
        return true;
    }
    return false;
}

/// What there is to read of an instance's project now.
ProjectProperties ImitatedHost::projectOf(const Instance& instance)
{
    const auto until = [](bool isOver, ProjectProperties before) {
        return isOver ? ProjectProperties::Readable : before;
    };
    const ProjectProperties given = quirks_.projectProperties;
    if (given == ProjectProperties::StandardAtFirst) {
        return until(
            std::ranges::any_of(instance.clips(),
                                [](const auto& clip) { return clip->source() != nullptr; }),
            given);
    }
    if (given != ProjectProperties::AfterFirstRender) return given;
    const std::lock_guard lock(mutex_);
    return until(rendered_.contains(instance.handle()), ProjectProperties::Never);
}

void ImitatedHost::propertiesUpdated(Instance& instance)
{
    const ProjectProperties project = projectOf(instance);
    if (project == ProjectProperties::StandardAtFirst) {
        instance.properties().assign(kOfxImageEffectPropProjectSize, {720.0, 576.0});
    } else if (project == ProjectProperties::Never) {
        for (const char* name :
             {kOfxImageEffectPropProjectSize, kOfxImageEffectPropProjectOffset,
              kOfxImageEffectPropProjectExtent, kOfxImageEffectPropProjectPixelAspectRatio}) {
            instance.properties().remove(name);
        }
    }
    for (const auto& clip : instance.clips()) updateClip(*clip);
}

void ImitatedHost::updateClip(Clip& clip) const
{
    PropertySet& properties = clip.properties();
    const ClipFormat& format = clip.format();
    const bool pretends = quirks_.allClipsConnected && !clip.source() && !clip.isOutput();
    if (pretends) {
        properties.assign(kOfxImageClipPropConnected, {1});
        for (const char* depth :
             {kOfxImageEffectPropPixelDepth, kOfxImageClipPropUnmappedPixelDepth}) {
            properties.assign(depth, {depthName(format.depth)});
        }
        for (const char* components :
             {kOfxImageEffectPropComponents, kOfxImageClipPropUnmappedComponents}) {
            properties.assign(components, {componentsName(format.components)});
        }
    }
    const bool hasFormat = pretends || clip.source() || clip.isOutput();
    if (hasFormat && format.components == Components::Alpha &&
        quirks_.matte == MatteDelivery::Rgba) {
        properties.assign(kOfxImageEffectPropComponents, {kOfxImageComponentRGBA});
    }
    if (clip.isOutput() && quirks_.outputUnconnected) {
        properties.assign(kOfxImageClipPropConnected, {0});
    }
    if (quirks_.frameRange == FrameRangeQuirk::Wrong) {
        const OfxRangeD& range = quirks_.wrongFrameRange;
        properties.assign(kOfxImageEffectPropFrameRange, {range.min, range.max});
    } else if (quirks_.frameRange == FrameRangeQuirk::Missing) {
        properties.remove(kOfxImageEffectPropFrameRange);
    }
}

OfxStatus ImitatedHost::unknownClipStatus()
{
    switch (quirks_.unknownClip) {
        case UnknownClip::NullHandleOK:
            return kOfxStatOK;
        case UnknownClip::Unknown:
            return kOfxStatErrUnknown;
        case UnknownClip::Untouched:
            return kMeaningless;
        case UnknownClip::BadHandle:
            break;
    }
    return kOfxStatErrBadHandle;
}

bool ImitatedHost::clearsUnknownClip()
{
    return quirks_.unknownClip != UnknownClip::Untouched;
}

OfxRectI ImitatedHost::deliveredBounds(const Clip& clip, const Picture& picture,
                                       OfxPointD scale) const
{
    OfxRectI bounds = picture.bounds();
    if (const auto& change = quirks_.boundsChange) {
        bounds = {bounds.x1 + change->x1, bounds.y1 + change->y1, bounds.x2 + change->x2,
                  bounds.y2 + change->y2};
    }
    if (quirks_.deliverRegionsOnly && clip.regionOfInterest()) {
        bounds = intersection(
            bounds, toPixels(*clip.regionOfInterest(), scale, picture.pixelAspectRatio()));
    }
    return bounds;
}

std::shared_ptr<const Picture> ImitatedHost::inputPicture(const Clip& clip,
                                                          std::shared_ptr<const Picture> picture,
                                                          OfxPointD scale)
{
    const ClipFormat& format = clip.format();
    const bool asRgba =
        format.components == Components::Alpha && quirks_.matte != MatteDelivery::Alpha;
    if (asRgba) {
        picture = std::make_shared<Picture>(picture->converted(format.depth, Components::RGBA));
    } else {
        picture = HostBehaviour::inputPicture(clip, std::move(picture), scale);
    }
    const bool isReshaped = quirks_.privateImages || quirks_.rowLayout || quirks_.boundsChange ||
                            quirks_.deliverRegionsOnly;
    if (!isReshaped) return picture;
    return std::make_shared<Picture>(picture->copied(deliveredBounds(clip, *picture, scale),
                                                     quirks_.rowLayout.value_or(picture->layout()),
                                                     kNoise));
}

void ImitatedHost::imageFetched(Image& image)
{
    if (!quirks_.infiniteRegion || image.clip().isOutput()) return;
    image.assign(kOfxImagePropRegionOfDefinition,
                 {kEverywhere.x1, kEverywhere.y1, kEverywhere.x2, kEverywhere.y2});
}

void ImitatedHost::memoryAllocated(ImageBytes& bytes)
{
    bytesLive_ += bytes.size();
    if (quirks_.memoryPoisoned) {
        std::memset(bytes.data(), kNoise, std::min(bytes.size(), kNoiseBytes));
    }
}

OfxStatus ImitatedHost::makeCalls(EmbeddedHost& host, OfxThreadFunctionV1* function,
                                  unsigned int count, void* argument)
{
    if (quirks_.multiThreadStatus) return *quirks_.multiThreadStatus;
    if (quirks_.threading == Threading::DirectCall)
        return callDirectly(host, function, 1, argument);
    if (quirks_.fewerThreads) count = std::min(count, std::max(*quirks_.fewerThreads, 1u));
    const bool isTurn = quirks_.threading == Threading::Mixed && ++threadCalls_ % 2 == 0;
    return quirks_.threading == Threading::InARow || isTurn
               ? callDirectly(host, function, count, argument)
               : HostBehaviour::makeCalls(host, function, count, argument);
}

unsigned int ImitatedHost::processorCount(unsigned int threads)
{
    const unsigned int question = cpuQuestions_++;
    if (quirks_.threading == Threading::DirectCall) threads = 1;
    return quirks_.cpuCountChanges ? 1 + question % threads : threads;
}

}  // namespace Tesseret::Host
