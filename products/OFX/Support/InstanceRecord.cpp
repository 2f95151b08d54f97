#include "products/OFX/Support/InstanceRecord.h"

#include <array>
#include <cmath>
#include <string>

#include "products/OFX/Support/Host.h"
#include "products/OFX/Support/Message.h"

namespace Orvane {

OvPoint pointOf(const OvOfxPropertySet& properties, const char* name)
{
    std::array<double, 2> values{};
    if (properties.getDoubles(name, values) != kOfxStatOK) return {};
    return {.x = static_cast<float>(values[0]), .y = static_cast<float>(values[1])};
}

std::optional<double> aspectOf(const OvOfxPropertySet& properties, const char* name)
{
    const double aspect = properties.doubleOr(name, 0.0);
    return aspect > 0.0 && std::isfinite(aspect) ? std::optional(aspect) : std::nullopt;
}

OvOfxChangeRecord readChangeRecord(const OvOfxPropertySet& inArgs, bool withTime)
{
    const double time = withTime ? inArgs.doubleOr(kOfxPropTime, 0.0) : 0.0;
    const std::string reason = inArgs.stringOr(kOfxPropChangeReason, "");
    return {.reason = changeReasonFromName(reason.c_str()), .time = time};
}

OfxStatus effectProperties(OfxImageEffectHandle effect, OvOfxPropertySet& properties)
{
    properties = OvOfxPropertySet();
    const OfxImageEffectSuiteV1* suite = hostDescription().suites.imageEffect;
    if (suite == nullptr) return kOfxStatErrMissingHostFeature;
    if (effect == nullptr) return kOfxStatErrBadHandle;
    OfxPropertySetHandle handle = nullptr;
    const OfxStatus status = suite->getPropertySet(effect, &handle);
    properties = OvOfxPropertySet(handle);
    return status == kOfxStatOK && handle == nullptr ? kOfxStatErrBadHandle : status;
}

OvOfxInstanceRecord::OvOfxInstanceRecord(OfxImageEffectHandle effect) : effect_(effect)
{
    static_cast<void>(effectProperties(effect, *this));  // the handle decides
    const OfxImageEffectSuiteV1* suite = hostDescription().suites.imageEffect;
    if (suite != nullptr && effect != nullptr) suite->getParamSet(effect, &paramSet_);
}

OfxParamHandle OvOfxInstanceRecord::paramHandle(const char* name) const
{
    OfxParamHandle param = nullptr;
    const OfxParameterSuiteV1* suite = hostDescription().suites.parameter;
    if (suite != nullptr && paramSet_ != nullptr) {
        suite->paramGetHandle(paramSet_, name, &param, nullptr);
    }
    return param;
}

OfxImageClipHandle OvOfxInstanceRecord::clipHandle(const char* name) const
{
    OfxImageClipHandle clip = nullptr;
    const OfxImageEffectSuiteV1* suite = hostDescription().suites.imageEffect;
    if (suite != nullptr && effect_ != nullptr) {
        suite->clipGetHandle(effect_, name, &clip, nullptr);
    }
    return clip;
}

void OvOfxInstanceRecord::pushFrame(OvActionKind kind, const OvOfxPropertySet& inArgs,
                                    const OvOfxPropertySet& outArgs)
{
    actions_.push_back({.kind = kind, .inArgs = inArgs, .outArgs = outArgs});
}

OfxStatus OvOfxInstanceRecord::popFrame()
{
    if (actions_.empty()) return kOfxStatReplyDefault;
    const OfxStatus status = actions_.back().status;
    actions_.pop_back();
    return status;
}

OvOfxActionFrame* OvOfxInstanceRecord::frame()
{
    return actions_.empty() ? nullptr : &actions_.back();
}

double OvOfxInstanceRecord::time() const
{
    return actions_.empty() ? 0.0 : actions_.back().inArgs.doubleOr(kOfxPropTime, 0.0);
}

OvPoint OvOfxInstanceRecord::projectSize() const
{
    return pointOf(*this, kOfxImageEffectPropProjectSize);
}

OvPoint OvOfxInstanceRecord::projectExtent() const
{
    return pointOf(*this, kOfxImageEffectPropProjectExtent);
}

OvPoint OvOfxInstanceRecord::projectOffset() const
{
    return pointOf(*this, kOfxImageEffectPropProjectOffset);
}

std::optional<double> OvOfxInstanceRecord::pixelAspectRatio() const
{
    return aspectOf(*this, kOfxImageEffectPropProjectPixelAspectRatio);
}

void OvOfxInstanceRecord::addInteract(OfxInteractHandle interact)
{
    interacts_.push_back(interact);
}

void OvOfxInstanceRecord::removeInteract(OfxInteractHandle interact)
{
    std::erase(interacts_, interact);
}

void OvOfxInstanceRecord::setSequentialRender(bool sequential) const
{
    setInt(kOfxImageEffectInstancePropSequentialRender, sequential ? 1 : 0);
}

OfxStatus OvOfxInstanceRecord::postMessage(const char* type, const char* id, const char* text) const
{
    const OfxStatus status = postToHost(effect_, type, id, text != nullptr ? text : "");
    return hostDescription().quirks.answersMessages ? status : kOfxStatFailed;
}

OvOfxParamEdit::OvOfxParamEdit(const OvOfxInstanceRecord& record, const char* name)
{
    const OfxParameterSuiteV1* suite = hostDescription().suites.parameter;
    if (suite == nullptr || record.paramSet() == nullptr) return;
    // With only one of the two functions edits could not be balanced.
    if (suite->paramEditBegin == nullptr || suite->paramEditEnd == nullptr) return;
    if (suite->paramEditBegin(record.paramSet(), name) == kOfxStatOK) begun_ = record.paramSet();
}

OvOfxParamEdit::~OvOfxParamEdit()
{
    if (begun_ != nullptr) hostDescription().suites.parameter->paramEditEnd(begun_);
}

}  // namespace Orvane
