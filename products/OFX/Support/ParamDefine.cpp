#include "products/OFX/Support/ParamDefine.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

#include "products/OFX/Support/Effect.h"
#include "products/OFX/Support/Host.h"
#include "products/OFX/Support/Page.h"
#include "products/OFX/Support/ParamTypes.h"

namespace Orvane {
namespace {

// Replaces labels and hints in hosts without a user interface.
constexpr const char* kRenderOnly = "Render Only";

/// The name of a value; values without one get the first name.
const char* nameOf(std::span<const char* const> names, int value)
{
    const bool known = value >= 0 && static_cast<std::size_t>(value) < names.size();
    return names[known ? static_cast<std::size_t>(value) : 0];
}

const char* cacheInvalidationName(int value)
{
    static constexpr std::array kNames = {kOfxParamInvalidateValueChange,
                                          kOfxParamInvalidateValueChangeToEnd,
                                          kOfxParamInvalidateAll};
    return nameOf(kNames, value);
}

const char* doubleTypeName(OvDoubleType type)
{
    static constexpr std::array kNames = {kOfxParamDoubleTypePlain,
                                          kOfxParamDoubleTypeAngle,
                                          kOfxParamDoubleTypeScale,
                                          kOfxParamDoubleTypeTime,
                                          kOfxParamDoubleTypeAbsoluteTime,
                                          kOfxParamDoubleTypeNormalisedX,
                                          kOfxParamDoubleTypeNormalisedY,
                                          kOfxParamDoubleTypeNormalisedXAbsolute,
                                          kOfxParamDoubleTypeNormalisedYAbsolute};
    return nameOf(kNames, static_cast<int>(type));
}

const char* double2DTypeName(OvDoubleType type)
{
    switch (type) {
        case OvDoubleType::Angle:
            return kOfxParamDoubleTypeAngle;
        case OvDoubleType::Scale:
            return kOfxParamDoubleTypeScale;
        case OvDoubleType::NormalisedXY:
            return kOfxParamDoubleTypeNormalisedXY;
        case OvDoubleType::NormalisedXYAbsolute:
            return kOfxParamDoubleTypeNormalisedXYAbsolute;
        default:
            return kOfxParamDoubleTypePlain;
    }
}

void writeInteger(const OvOfxParam& param, const OvOfxPropertySet& properties)
{
    const auto& integer = static_cast<const OvOfxIntegerParam&>(param);
    properties.setInt(kOfxParamPropDefault, integer.initial);
    properties.setInt(kOfxParamPropMin, integer.min);
    properties.setInt(kOfxParamPropMax, integer.max);
    properties.setInt(kOfxParamPropDisplayMin, integer.displayMin);
    properties.setInt(kOfxParamPropDisplayMax, integer.displayMax);
}

void writeDouble(const OvOfxParam& param, const OvOfxPropertySet& properties)
{
    const auto& real = static_cast<const OvOfxDoubleParam&>(param);
    properties.setDouble(kOfxParamPropMin, real.min);
    properties.setDouble(kOfxParamPropMax, real.max);
    properties.setDouble(kOfxParamPropDisplayMin, real.displayMin);
    properties.setDouble(kOfxParamPropDisplayMax, real.displayMax);
    properties.setDouble(kOfxParamPropDefault, real.initial);
    properties.setDouble(kOfxParamPropIncrement, real.increment);
    properties.setInt(kOfxParamPropDigits, real.digits);
    properties.setString(kOfxParamPropDoubleType, doubleTypeName(real.doubleType));
}

void writeBoolean(const OvOfxParam& param, const OvOfxPropertySet& properties)
{
    const auto& boolean = static_cast<const OvOfxBooleanParam&>(param);
    properties.setInt(kOfxParamPropDefault, boolean.initial ? 1 : 0);
}

void writeChoice(const OvOfxParam& param, const OvOfxPropertySet& properties)
{
    const auto& choice = static_cast<const OvOfxChoiceParam&>(param);
    int index = 0;
    for (const std::string& option : choice.options) {
        properties.setString(kOfxParamPropChoiceOption, option.c_str(), index++);
    }
    // Without a default among the options the host chooses, namely the first one.
    const bool isNeeded = hostDescription().quirks.needsChoiceDefaults && !choice.options.empty();
    const int initial = isNeeded ? std::max(choice.initialIndex(), 0) : choice.initialIndex();
    if (initial >= 0) properties.setInt(kOfxParamPropDefault, initial);
}

void writeNothing(const OvOfxParam&, const OvOfxPropertySet&) {}

void writeColour(const OvOfxParam& param, const OvOfxPropertySet& properties)
{
    const auto& colour = static_cast<const OvOfxRGBParam&>(param);
    const int count = colour.componentCount();
    std::array<double, 4> initial{};
    std::ranges::copy(colour.initial, initial.begin());
    properties.setDoubles(kOfxParamPropDefault,
                          std::span(initial).first(static_cast<std::size_t>(count)));
    const auto writeEach = [&](const char* name, float value) {
        for (int index = 0; index < count; ++index) properties.setDouble(name, value, index);
    };
    writeEach(kOfxParamPropMin, colour.min);
    writeEach(kOfxParamPropMax, colour.max);
    writeEach(kOfxParamPropDisplayMin, colour.displayMin);
    writeEach(kOfxParamPropDisplayMax, colour.displayMax);
    properties.setDouble(kOfxParamPropIncrement, colour.increment);
    properties.setInt(kOfxParamPropDigits, colour.digits);
}

void writeString(const OvOfxParam& param, const OvOfxPropertySet& properties)
{
    const auto& text = static_cast<const OvOfxStringParam&>(param);
    properties.setString(kOfxParamPropDefault, text.initial.c_str());
    properties.setString(kOfxParamPropStringMode,
                         text.singleLine ? kOfxParamStringIsSingleLine : kOfxParamStringIsLabel);
}

void writeCustom(const OvOfxParam& param, const OvOfxPropertySet& properties)
{
    const auto& custom = static_cast<const OvOfxCustomParam&>(param);
    properties.setString(kOfxParamPropDefault, custom.initial.c_str());
}

void writeDouble2D(const OvOfxParam& param, const OvOfxPropertySet& properties)
{
    const auto& position = static_cast<const OvOfxDouble2DParam&>(param);
    const auto writePair = [&](const char* name, OvPoint value) {
        properties.setDoubles(name, std::array<double, 2>{value.x, value.y});
    };
    properties.setString(kOfxParamPropDoubleType, double2DTypeName(position.doubleType));
    writePair(kOfxParamPropDefault, position.initial);
    writePair(kOfxParamPropDisplayMin, position.displayMin);
    writePair(kOfxParamPropDisplayMax, position.displayMax);
    writePair(kOfxParamPropMin, position.min);
    writePair(kOfxParamPropMax, position.max);
    properties.setDouble(kOfxParamPropIncrement, position.increment);
    properties.setInt(kOfxParamPropDigits, position.digits);
}

void writeValued(const OvOfxValuedParam& param, const OvOfxPropertySet& properties)
{
    properties.setInt(kOfxParamPropAnimates, param.animates ? 1 : 0);
    properties.setInt(kOfxParamPropCanUndo, param.canUndo ? 1 : 0);
    properties.setInt(kOfxParamPropPluginMayWrite, param.pluginMayWrite ? 1 : 0);
    properties.setInt(kOfxParamPropPersistant, param.persistent ? 1 : 0);
    properties.setString(kOfxParamPropCacheInvalidation,
                         cacheInvalidationName(param.cacheInvalidation));
    properties.setInt(kOfxParamPropEvaluateOnChange, param.evaluateOnChange ? 1 : 0);
}

/// How the objects of a class are defined. The codes are tested in this order, so a class comes
/// before its base.
struct ParamKind {
    int code;
    const char* typeName;
    void (*writeSpecific)(const OvOfxParam& param, const OvOfxPropertySet& properties);
};

constexpr auto kKinds = std::to_array<ParamKind>({
    {OvOfxIntegerParam::kCode, kOfxParamTypeInteger, writeInteger},
    {OvOfxDoubleParam::kCode, kOfxParamTypeDouble, writeDouble},
    {OvOfxBooleanParam::kCode, kOfxParamTypeBoolean, writeBoolean},
    {OvOfxChoiceParam::kCode, kOfxParamTypeChoice, writeChoice},
    {OvOfxPushButton::kCode, kOfxParamTypePushButton, writeNothing},
    {OvOfxRGBAParam::kCode, kOfxParamTypeRGBA, writeColour},
    {OvOfxRGBParam::kCode, kOfxParamTypeRGB, writeColour},
    {OvOfxStringParam::kCode, kOfxParamTypeString, writeString},
    {OvOfxCustomParam::kCode, kOfxParamTypeCustom, writeCustom},
    {OvOfxDouble2DParam::kCode, kOfxParamTypeDouble2D, writeDouble2D},
});

/// Defines the entries of the list except clips, up to the host's limit.
OfxStatus defineList(OvOfxEffect& effect, std::span<OvOfxParam* const> params,
                     OfxParamSetHandle paramSet, const char* parent)
{
    const int limit = hostDescription().maxParameters;
    int count = 0;
    for (OvOfxParam* param : params) {
        if (param->isA(OvOfxClip::kCode)) continue;
        if (limit >= 1 && count >= limit) break;
        ++count;
        if (const OfxStatus status = defineParameter(effect, *param, paramSet, parent)) {
            return status;
        }
    }
    return kOfxStatOK;
}

OfxStatus defineGroup(OvOfxEffect& effect, OvOfxGroup& group, OfxParamSetHandle paramSet)
{
    OvOfxPropertySet properties;
    if (const OfxStatus status =
            defineToHost(paramSet, kOfxParamTypeGroup, group.name.c_str(), properties)) {
        return status;
    }
    writeCommonProperties(group, properties);
    effect.parameters().push_back(&group);
    return defineList(effect, group.children, paramSet, group.name.c_str());
}

/// Defines all pages or none: a host without room for one of them makes its own layout.
OfxStatus definePages(std::span<OvOfxPage* const> pages, const OvOfxPropertySet& effectProperties,
                      OfxParamSetHandle paramSet)
{
    const OvOfxHost& host = hostDescription();
    const std::vector<const OvOfxPage*> shown(pages.begin(), pages.end());
    if (!hasRoomForPages(shown, host.pageRows, host.pageColumns)) return kOfxStatOK;
    int index = 0;
    for (const OvOfxPage* page : shown) {
        if (page->excluded) continue;
        effectProperties.setString(kOfxPluginPropParamPageOrder, page->name.c_str(), index++);
        if (const OfxStatus status = definePage(*page, paramSet)) return status;
    }
    return kOfxStatOK;
}

}  // namespace

OfxStatus defineParameters(OvOfxEffect& effect, OfxImageEffectHandle handle)
{
    const OfxImageEffectSuiteV1& suite = *hostDescription().suites.imageEffect;
    OfxParamSetHandle paramSet = nullptr;
    if (const OfxStatus status = suite.getParamSet(handle, &paramSet)) return status;
    if (paramSet == nullptr) return kOfxStatErrBadHandle;

    const OvOfxContextContainer* container = effect.container(effect.context());
    if (container == nullptr) return kOfxStatFailed;
    if (container->leadParam != nullptr) {
        if (const OfxStatus lead = defineParameter(effect, *container->leadParam, paramSet, "")) {
            return lead;
        }
    }
    if (const OfxStatus params = defineList(effect, container->params, paramSet, "")) return params;

    OfxPropertySetHandle effectProperties = nullptr;
    suite.getPropertySet(handle, &effectProperties);
    return definePages(container->pages, OvOfxPropertySet(effectProperties), paramSet);
}

OfxStatus defineParameter(OvOfxEffect& effect, OvOfxParam& param, OfxParamSetHandle paramSet,
                          const char* parent)
{
    if (param.excluded || param.isA(OvOfxClip::kCode)) return kOfxStatOK;
    if (auto* group = paramCast<OvOfxGroup>(&param)) return defineGroup(effect, *group, paramSet);
    const auto kind =
        std::ranges::find_if(kKinds, [&](const ParamKind& known) { return param.isA(known.code); });
    if (kind == kKinds.end()) return kOfxStatFailed;

    OvOfxPropertySet properties;
    if (const OfxStatus status =
            defineToHost(paramSet, kind->typeName, param.name.c_str(), properties)) {
        return status;
    }
    properties.setString(kOfxParamPropParent, parent);
    writeCommonProperties(param, properties);
    if (const auto* valued = paramCast<OvOfxValuedParam>(&param)) writeValued(*valued, properties);
    kind->writeSpecific(param, properties);
    effect.parameters().push_back(&param);
    return kOfxStatOK;
}

OfxStatus defineToHost(OfxParamSetHandle paramSet, const char* typeName, const char* name,
                       OvOfxPropertySet& properties)
{
    OfxPropertySetHandle handle = nullptr;
    const OfxStatus status =
        hostDescription().suites.parameter->paramDefine(paramSet, typeName, name, &handle);
    properties = OvOfxPropertySet(handle);
    return status;
}

void writeCommonProperties(const OvOfxParam& param, const OvOfxPropertySet& properties)
{
    const bool background = hostDescription().isBackground;
    properties.setString(kOfxPropLabel, background ? kRenderOnly : param.label.c_str());
    properties.setString(kOfxParamPropHint, background ? kRenderOnly : param.hint.c_str());
    properties.setString(kOfxParamPropScriptName, param.scriptName.c_str());
    properties.setInt(kOfxParamPropSecret, background || param.secret ? 1 : 0);
    properties.setInt(kOfxParamPropEnabled, 1);
}

}  // namespace Orvane
