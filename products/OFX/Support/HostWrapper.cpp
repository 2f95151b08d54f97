#include "products/OFX/Support/HostWrapper.h"

#include <cstdio>
#include <string>

#include "products/OFX/Support/Effect.h"
#include "products/OFX/Support/Host.h"
#include "products/OFX/Support/ParamTypes.h"

namespace Orvane {
namespace {

/// Asks the host whether to abort the action. No other part of a render runs meanwhile.
int pollHost(void* abortHandle, int*)
{
    if (abortHandle == nullptr) return 0;  // some hosts report an abort for a null handle
    return hostDescription().suites.imageEffect->abort(
        static_cast<OfxImageEffectHandle>(abortHandle));
}

}  // namespace

OvOfxHostWrapper::OvOfxHostWrapper(OvOfxEffect& effect, const OvOfxPropertySet* inArgs,
                                   const OvOfxPropertySet* outArgs)
    : effect_(effect), inArgs_(inArgs), outArgs_(outArgs)
{
    if (const OvOfxInstanceRecord* record = effect.instance()) {
        status_.abortHandle = record->effectHandle();
    }
    status_.poll = pollHost;
}

OvOfxParam* OvOfxHostWrapper::findParam(const char* name) const
{
    OvOfxParam* param = effect_.findParam(name);
    if (param == nullptr) {
        std::printf("OvOfxHostWrapper::findParam, failed to find parameter %s\n", name);
    }
    return param;
}

template <typename T>
T* OvOfxHostWrapper::find(const char* name) const
{
    return paramCast<T>(findParam(name));
}

/// The reference of normalised values. Where the host reports no project size, the source's region
/// of definition is used.
OvProject OvOfxHostWrapper::project()
{
    const OvOfxInstanceRecord* record = effect_.instance();
    if (record == nullptr) return {};
    const OvPoint size = record->projectSize();
    if (size.x > 0.0f && size.y > 0.0f) return {size, record->projectOffset()};
    const OvOfxClip* source = effect_.findClip(kOfxImageEffectSimpleSourceClipName);
    if (source == nullptr) return {};
    const OvRect region = source->regionOfDefinition(time());
    return {.size = {region.xMax - region.xMin, region.yMax - region.yMin},
            .offset = {region.xMin, region.yMin}};
}

/// Pixels of the action per canonical unit, for positions.
OvPoint OvOfxHostWrapper::positionScale() const
{
    const OvPoint scale = renderScale();
    return {static_cast<float>(scale.x / pixelAspectRatio()),
            static_cast<float>(scale.y * fieldScale())};
}

bool OvOfxHostWrapper::hasParam(const char* name) const
{
    return effect_.findParam(name) != nullptr;
}

double OvOfxHostWrapper::doubleAt(const char* name, float time)
{
    const auto* param = find<OvOfxDoubleParam>(name);
    return param != nullptr
               ? normalisedToCanonical(param->valueAt(time), param->doubleType, project())
               : 0.0;
}

int OvOfxHostWrapper::intAt(const char* name, float time)
{
    const OvOfxParam* param = findParam(name);
    if (const auto* integer = paramCast<OvOfxIntegerParam>(param)) return integer->valueAt(time);
    if (const auto* choice = paramCast<OvOfxChoiceParam>(param)) return choice->valueAt(time);
    if (const auto* boolean = paramCast<OvOfxBooleanParam>(param)) {
        return boolean->valueAt(time) ? 1 : 0;
    }
    return 0;
}

bool OvOfxHostWrapper::boolAt(const char* name, float time)
{
    const auto* param = find<OvOfxBooleanParam>(name);
    return param != nullptr && param->valueAt(time);
}

std::array<float, 3> OvOfxHostWrapper::rgbAt(const char* name, float time)
{
    const auto* param = find<OvOfxRGBParam>(name);
    if (param == nullptr) return {};
    const std::array<float, 4> colour = param->valueAt(time);
    return {colour[0], colour[1], colour[2]};
}

std::array<float, 4> OvOfxHostWrapper::rgbaAt(const char* name, float time)
{
    const auto* param = find<OvOfxRGBAParam>(name);
    return param != nullptr ? param->valueAt(time) : std::array<float, 4>{};
}

OvPoint OvOfxHostWrapper::double2DAt(const char* name, float time)
{
    const auto* param = find<OvOfxDouble2DParam>(name);
    if (param == nullptr) return {};
    return normalisedToPixels(param->valueAt(time), param->doubleType, project(), positionScale());
}

double OvOfxHostWrapper::doubleIntegral(const char* name, float from, float to)
{
    const auto* param = find<OvOfxDoubleParam>(name);
    if (param == nullptr) return 0.0;
    return normalisedToCanonical(param->integral(from, to), param->doubleType, project());
}

double OvOfxHostWrapper::doubleDerivative(const char* name, float time)
{
    const auto* param = find<OvOfxDoubleParam>(name);
    if (param == nullptr) return 0.0;
    return normalisedToCanonical(param->derivativeAt(time), param->doubleType, project());
}

OvPoint OvOfxHostWrapper::double2DIntegral(const char* name, float from, float to)
{
    const auto* param = find<OvOfxDouble2DParam>(name);
    if (param == nullptr) return {};
    return normalisedToPixels(param->integral(from, to), param->doubleType, project(),
                              positionScale());
}

OvPoint OvOfxHostWrapper::double2DDerivative(const char* name, float time)
{
    const auto* param = find<OvOfxDouble2DParam>(name);
    if (param == nullptr) return {};
    return normalisedToPixels(param->derivativeAt(time), param->doubleType, project(),
                              positionScale());
}

const OvOfxClipAccessor* OvOfxHostWrapper::clip(const char* name) const
{
    const OvOfxClip* clip = effect_.findClip(name);
    return clip != nullptr ? &clip->accessor() : nullptr;
}

bool OvOfxHostWrapper::hasClip(const char* name) const
{
    return effect_.findClip(name) != nullptr;
}

void OvOfxHostWrapper::setDouble(const char* name, double canonical)
{
    if (const auto* param = find<OvOfxDoubleParam>(name)) {
        param->setValue(canonicalToNormalised(canonical, param->doubleType, project()));
    }
}

void OvOfxHostWrapper::setDouble2D(const char* name, float x, float y)
{
    if (const auto* param = find<OvOfxDouble2DParam>(name)) {
        param->setValue(pixelsToNormalised({x, y}, param->doubleType, project(), positionScale()));
    }
}

void OvOfxHostWrapper::setBool(const char* name, bool value)
{
    if (const auto* param = find<OvOfxBooleanParam>(name)) param->setValue(value);
}

void OvOfxHostWrapper::setRGB(const char* name, float r, float g, float b)
{
    const auto* param = find<OvOfxRGBParam>(name);
    if (param != nullptr && param->componentCount() == 3) param->setValue({r, g, b, 0.0f});
}

void OvOfxHostWrapper::setRGBA(const char* name, float r, float g, float b, float a)
{
    if (const auto* param = find<OvOfxRGBAParam>(name)) param->setValue({r, g, b, a});
}

void OvOfxHostWrapper::setInt(const char* name, int value)
{
    const OvOfxParam* param = findParam(name);
    if (const auto* integer = paramCast<OvOfxIntegerParam>(param)) integer->setValue(value);
    if (const auto* choice = paramCast<OvOfxChoiceParam>(param)) choice->setValue(value);
}

double OvOfxHostWrapper::time()
{
    if (timeKnown_) return time_;
    if (inArgs_ != nullptr && inArgs_->getDouble(kOfxPropTime, time_) == kOfxStatOK) {
        timeKnown_ = true;
        return time_;
    }
    const OvOfxInstanceRecord* record = effect_.instance();
    return record != nullptr ? record->time() : 0.0;
}

double OvOfxHostWrapper::frameRate() const
{
    return effect_.outputClip().frameRate();
}

double OvOfxHostWrapper::pixelAspectRatio() const
{
    const OvOfxInstanceRecord* record = effect_.instance();
    if (record == nullptr) return 1.0;
    if (const std::optional<double> project = record->pixelAspectRatio()) return *project;
    if (sourceAspect_) return *sourceAspect_;
    const OvOfxClip* source = effect_.findClip(kOfxImageEffectSimpleSourceClipName);
    return source != nullptr ? source->pixelAspectRatio().value_or(1.0) : 1.0;
}

bool OvOfxHostWrapper::hasProjectAspect() const
{
    const OvOfxInstanceRecord* record = effect_.instance();
    return record != nullptr && record->pixelAspectRatio().has_value();
}

double OvOfxHostWrapper::fieldScale() const
{
    const bool singleField = effect_.descriptor.fieldExtraction == 1;
    return singleField && fieldToRender() != OvField::None ? 0.5 : 1.0;
}

OvPoint OvOfxHostWrapper::renderScale() const
{
    std::array<double, 2> scale{};
    if (inArgs_ == nullptr ||
        inArgs_->getDoubles(kOfxImageEffectPropRenderScale, scale) != kOfxStatOK) {
        return {1.0f, 1.0f};
    }
    return {static_cast<float>(scale[0]), static_cast<float>(scale[1])};
}

OfxRectI OvOfxHostWrapper::renderWindow() const
{
    std::array<int, 4> sides{};
    if (inArgs_ == nullptr ||
        inArgs_->getInts(kOfxImageEffectPropRenderWindow, sides) != kOfxStatOK) {
        return {};
    }
    return {.x1 = sides[0], .y1 = sides[1], .x2 = sides[2], .y2 = sides[3]};
}

OvField OvOfxHostWrapper::fieldToRender() const
{
    if (inArgs_ == nullptr) return OvField::None;
    return fieldFromName(inArgs_->stringOr(kOfxImageEffectPropFieldToRender, "").c_str());
}

bool OvOfxHostWrapper::fieldRenderTwiceAlways() const
{
    return effect_.descriptor.fieldRenderTwiceAlways;
}

OvPoint OvOfxHostWrapper::projectExtentPixels() const
{
    const OvOfxInstanceRecord* record = effect_.instance();
    if (record == nullptr) return {};
    return canonicalToPixels(record->projectExtent(), renderScale(), pixelAspectRatio());
}

OvRect OvOfxHostWrapper::projectRectPixels() const
{
    const OvOfxInstanceRecord* record = effect_.instance();
    if (record == nullptr) return {};
    const OvPoint offset = record->projectOffset();
    const OvPoint size = record->projectSize();
    const OvPoint min = canonicalToPixels(offset, renderScale(), pixelAspectRatio());
    const OvPoint max = canonicalToPixels({offset.x + size.x, offset.y + size.y}, renderScale(),
                                          pixelAspectRatio());
    return {.xMin = min.x, .xMax = max.x, .yMin = min.y, .yMax = max.y};
}

int OvOfxHostWrapper::contextKind() const
{
    switch (effect_.context()) {
        case OvContext::Generator:
            return 0;
        case OvContext::Retimer:
            return 2;
        case OvContext::General:
            return 3;
        default:
            return 1;
    }
}

int OvOfxHostWrapper::message(const char* text, int kind, const char* id)
{
    return effect_.message(text, kind, id);
}

void OvOfxHostWrapper::setCounter(int value)
{
    effect_.counter = value;
}

int OvOfxHostWrapper::counter() const
{
    return effect_.counter;
}

void OvOfxHostWrapper::addFrameRange(const char* clipName, double first, double last)
{
    if (outArgs_ != nullptr) {
        const std::string property = std::string(kOfxImageClipPropFrameRangePrefix) + clipName;
        outArgs_->setDouble(property.c_str(), first, 2 * frameRangeCount_);
        outArgs_->setDouble(property.c_str(), last, 2 * frameRangeCount_ + 1);
    }
    ++frameRangeCount_;
}

OvRect OvOfxHostWrapper::toCanonical(const OvRect& pixels) const
{
    return pixelsToCanonical(pixels, renderScale(), pixelAspectRatio());
}

}  // namespace Orvane
