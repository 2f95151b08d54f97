#include "host/Descriptor.h"

#include <algorithm>

#include "host/EmbeddedHost.h"

namespace Tesseret::Host {

namespace {

/// The numbers of a property, integer or double; empty when the plug-in wrote none.
std::vector<double> numbersOf(const PropertySet& properties, const char* name)
{
    if (!properties.wasWritten(name)) return {};
    const std::vector<int> whole = properties.ints(name);
    return whole.empty() ? properties.doubles(name)
                         : std::vector<double>(whole.begin(), whole.end());
}

bool flag(const PropertySet& properties, const char* name, bool fallback)
{
    return properties.intOr(name, fallback ? 1 : 0) != 0;
}

}  // namespace

bool ParameterDescription::isGroup() const
{
    return type == kOfxParamTypeGroup;
}
bool ParameterDescription::isPage() const
{
    return type == kOfxParamTypePage;
}
bool ParameterDescription::isButton() const
{
    return type == kOfxParamTypePushButton;
}

const ClipDescription* ContextDescription::clip(std::string_view name) const
{
    const auto found = std::find_if(clips.begin(), clips.end(),
                                    [&](const auto& each) { return each.name == name; });
    return found == clips.end() ? nullptr : &*found;
}

const ParameterDescription* ContextDescription::parameter(std::string_view name) const
{
    const auto found = std::find_if(parameters.begin(), parameters.end(),
                                    [&](const auto& each) { return each.name == name; });
    return found == parameters.end() ? nullptr : &*found;
}

Descriptor::Descriptor(EmbeddedHost& host) : EffectObject(host, "effect")
{
    PropertySet& own = properties();
    own.define(kOfxPropType, {kOfxTypeImageEffect}, Access::ReadOnly);
    own.define(kOfxPropLabel, {""});
    own.define(kOfxImageEffectPluginPropGrouping, {""});
    own.defineList(kOfxImageEffectPropSupportedContexts, PropertyType::String);
    own.defineList(kOfxImageEffectPropSupportedPixelDepths, PropertyType::String);
    own.define(kOfxImageEffectPluginPropSingleInstance, {0});
    own.define(kOfxImageEffectPluginRenderThreadSafety, {kOfxImageEffectRenderInstanceSafe});
    own.define(kOfxImageEffectPluginPropHostFrameThreading, {1});
    own.define(kOfxImageEffectPluginPropOverlayInteractV1, {static_cast<void*>(nullptr)});
    own.define(kOfxImageEffectPropSupportsMultiResolution, {1});
    own.define(kOfxImageEffectPropSupportsTiles, {1});
    own.define(kOfxImageEffectPropTemporalClipAccess, {0});
    own.define(kOfxImageEffectPluginPropFieldRenderTwiceAlways, {1});
    own.define(kOfxImageEffectPropSupportsMultipleClipDepths, {0});
    own.define(kOfxImageEffectPropSupportsMultipleClipPARs, {0});
    own.defineList(kOfxImageEffectPropClipPreferencesSlaveParam, PropertyType::String);
    own.define(kOfxImageEffectInstancePropSequentialRender, {0});
    own.defineList(kOfxPluginPropParamPageOrder, PropertyType::String);
}

Descriptor::Descriptor(EmbeddedHost& host, const Descriptor& main, std::string context)
    : EffectObject(host, "effect"), context_(std::move(context))
{
    properties().copyFrom(main.properties());
    properties().assign(kOfxImageEffectPropContext, {context_});
}

EffectDescription Descriptor::describeEffect() const
{
    const PropertySet& own = properties();
    EffectDescription result;
    result.label = own.stringOr(kOfxPropLabel, "");
    result.grouping = own.stringOr(kOfxImageEffectPluginPropGrouping, "");
    result.contexts = own.strings(kOfxImageEffectPropSupportedContexts);
    result.depths = own.strings(kOfxImageEffectPropSupportedPixelDepths);
    result.supportsTiles = flag(own, kOfxImageEffectPropSupportsTiles, true);
    result.supportsMultiResolution = flag(own, kOfxImageEffectPropSupportsMultiResolution, true);
    result.temporalClipAccess = flag(own, kOfxImageEffectPropTemporalClipAccess, false);
    result.multipleClipDepths = flag(own, kOfxImageEffectPropSupportsMultipleClipDepths, false);
    result.singleInstance = flag(own, kOfxImageEffectPluginPropSingleInstance, false);
    result.threadSafety = own.stringOr(kOfxImageEffectPluginRenderThreadSafety, "");
    result.hasOverlay = own.pointerOr(kOfxImageEffectPluginPropOverlayInteractV1, nullptr);
    return result;
}

ContextDescription Descriptor::describeContext() const
{
    ContextDescription result;
    result.context = context_;
    for (const auto& each : clips()) result.clips.push_back(describeClip(*each));
    const std::vector<std::string> slaves =
        properties().strings(kOfxImageEffectPropClipPreferencesSlaveParam);
    for (const auto& each : parameters().all()) {
        ParameterDescription described = describeParameter(*each);
        described.isClipPreferencesSlave =
            std::find(slaves.begin(), slaves.end(), described.name) != slaves.end();
        if (!host().behaviour().showsParameter(*each, described)) continue;
        result.parameters.push_back(std::move(described));
    }
    result.pageOrder = properties().strings(kOfxPluginPropParamPageOrder);
    return result;
}

ClipDescription describeClip(const Clip& clip)
{
    const PropertySet& own = clip.properties();
    ClipDescription result;
    result.name = clip.name();
    result.label = own.stringOr(kOfxPropLabel, "");
    result.components = own.strings(kOfxImageEffectPropSupportedComponents);
    result.optional = clip.isOptional();
    result.isMask = flag(own, kOfxImageClipPropIsMask, false);
    result.temporalAccess = flag(own, kOfxImageEffectPropTemporalClipAccess, false);
    result.supportsTiles = flag(own, kOfxImageEffectPropSupportsTiles, true);
    result.fieldExtraction = own.stringOr(kOfxImageClipPropFieldExtraction, "");
    return result;
}

ParameterDescription describeParameter(const Parameter& parameter)
{
    const PropertySet& own = parameter.properties();
    ParameterDescription result;
    result.name = parameter.name();
    result.type = parameter.type();
    result.label = own.stringOr(kOfxPropLabel, "");
    result.scriptName = own.stringOr(kOfxParamPropScriptName, "");
    result.hint = own.stringOr(kOfxParamPropHint, "");
    result.parent = own.stringOr(kOfxParamPropParent, "");
    result.shape = parameter.shape();
    result.initial = parameter.defaultValue();
    result.min = numbersOf(own, kOfxParamPropMin);
    result.max = numbersOf(own, kOfxParamPropMax);
    result.displayMin = numbersOf(own, kOfxParamPropDisplayMin);
    result.displayMax = numbersOf(own, kOfxParamPropDisplayMax);
    result.increment = own.doubleOr(kOfxParamPropIncrement, 1.0);
    result.digits = own.intOr(kOfxParamPropDigits, 2);
    result.doubleType = own.stringOr(kOfxParamPropDoubleType, "");
    result.options = own.strings(kOfxParamPropChoiceOption);
    result.stringMode = own.stringOr(kOfxParamPropStringMode, "");
    result.pageChildren = own.strings(kOfxParamPropPageChild);
    result.secret = flag(own, kOfxParamPropSecret, false);
    result.enabled = flag(own, kOfxParamPropEnabled, true);
    result.animates = flag(own, kOfxParamPropAnimates, true);
    result.persistent = flag(own, kOfxParamPropPersistant, true);
    result.evaluateOnChange = flag(own, kOfxParamPropEvaluateOnChange, true);
    result.canUndo = flag(own, kOfxParamPropCanUndo, true);
    result.cacheInvalidation = own.stringOr(kOfxParamPropCacheInvalidation, "");
    return result;
}

}  // namespace Tesseret::Host
