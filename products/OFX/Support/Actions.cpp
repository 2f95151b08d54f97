#include "products/OFX/Support/Actions.h"

#include <array>
#include <memory>
#include <string>
#include <utility>

#include "ofx/ofxParam.h"
#include "products/OFX/Support/Context.h"
#include "products/OFX/Support/Effect.h"
#include "products/OFX/Support/Host.h"
#include "products/OFX/Support/Message.h"
#include "products/OFX/Support/ParamDefine.h"
#include "products/OFX/Support/ParamTypes.h"
#include "products/OFX/Support/Plugin.h"

namespace Orvane::Actions {
namespace {

OvOfxEffect* findInstance(const Call& call)
{
    OvOfxPropertySet properties;
    return findInstance(call.effect, properties);
}

/// The objects that an action on an instance works with. They are destroyed in reverse order, so
/// that none outlives the objects it was made from.
class InstanceAction {
public:
    InstanceAction(OvOfxEffect& effect, OfxPropertySetHandle inArgs, OfxPropertySetHandle outArgs)
        : inArgs_(inArgs), outArgs_(outArgs), wrapper_(effect.makeHostWrapper(&inArgs_, &outArgs_))
    {}

    InstanceAction(const InstanceAction&) = delete;
    InstanceAction& operator=(const InstanceAction&) = delete;

    [[nodiscard]] const OvOfxPropertySet& inArgs() const { return inArgs_; }
    [[nodiscard]] const OvOfxPropertySet& outArgs() const { return outArgs_; }
    [[nodiscard]] OvOfxHostWrapper& wrapper() const { return *wrapper_; }

private:
    OvOfxPropertySet inArgs_;
    OvOfxPropertySet outArgs_;
    std::unique_ptr<OvOfxHostWrapper> wrapper_;
};

/// An action that queries the effect.
class InstanceQuery : public InstanceAction {
public:
    InstanceQuery(OvOfxEffect& effect, OfxPropertySetHandle inArgs, OfxPropertySetHandle outArgs)
        : InstanceAction(effect, inArgs, outArgs), interface_(effect.makeInterface(wrapper()))
    {}

    OvOfxEffectInterface* operator->() const { return interface_.get(); }

private:
    std::unique_ptr<OvOfxEffectInterface> interface_;
};

/// Runs one query for every connected input; kOfxStatOK when it was handled for any.
template <typename Query>
OfxStatus queryInputs(OvOfxEffect& effect, const Query& query)
{
    bool handled = false;
    for (const auto& [name, clip] : effect.clipTable()) {
        if (name == kOfxImageEffectOutputClipName || !clip->isConnected()) continue;
        if (query(name)) handled = true;
    }
    return handled ? kOfxStatOK : kOfxStatReplyDefault;
}

/// Runs a hook that returns its results through an action frame.
OfxStatus runInFrame(const Call& call, OvActionKind kind, void (OvOfxEffect::*hook)())
{
    OvOfxEffect* effect = findInstance(call);
    if (effect == nullptr) return kOfxStatReplyDefault;
    OvOfxInstanceRecord& record = *effect->instance();
    record.pushFrame(kind, OvOfxPropertySet(), OvOfxPropertySet(call.outArgs));
    try {
        (effect->*hook)();
    } catch (...) {
        record.popFrame();
        throw;
    }
    return record.popFrame();
}

OvRect readRect(const OvOfxPropertySet& arguments, const char* name)
{
    std::array<double, 4> sides{};
    if (arguments.getDoubles(name, sides) != kOfxStatOK) return {};
    return fromOfx({.x1 = sides[0], .y1 = sides[1], .x2 = sides[2], .y2 = sides[3]});
}

void writeRect(const OvOfxPropertySet& arguments, const std::string& name, const OvRect& rect)
{
    const OfxRectD sides = toOfx(rect);
    arguments.setDoubles(name.c_str(), std::array{sides.x1, sides.y1, sides.x2, sides.y2});
}

void notify(const OvOfxParam& param, const OvOfxChangeRecord& change)
{
    if (param.onChange) param.onChange(change);
}

/// Whether the host has the features that the effect requires; notifies the user if not.
bool hasNeededFeatures(const OvOfxEffect& effect)
{
    if (!effect.descriptor.temporalClipAccess || hostDescription().temporalClipAccess) return true;
    const std::string text = "Sorry, temporal access is not supported in " +
                             hostDescription().name + ".\nThis feature is required for " +
                             effect.descriptor.label + ".";
    effect.message(text.c_str(), kMessageError, nullptr);
    return false;
}

/// Lists the parameters that clip preferences depend on.
void writeClipPreferenceSlaves(OvOfxEffect& effect, const OvOfxPropertySet& properties)
{
    int count = 0;
    for (OvOfxParam* param : effect.parameters()) {
        const auto* valued = paramCast<OvOfxValuedParam>(param);
        if (valued == nullptr || !valued->clipPreferencesSlave) continue;
        properties.setString(kOfxImageEffectPropClipPreferencesSlaveParam, param->name.c_str(),
                             count++);
    }
}

/// Calls the change callback of every parameter, so that all dependent state is up to date.
void notifyAll(OvOfxEffect& effect)
{
    for (const OvOfxParam* param : effect.parameters()) {
        if (param->isA(OvOfxValuedParam::kCode)) notify(*param, OvOfxChangeRecord());
    }
}

void destroy(std::unique_ptr<OvOfxEffect> effect)
{
    effect->deleteInstanceRecord();
    effect->instanceDestroyed();
    effect->deleteHandles();
}

/// Polls the host's abort a last time and returns the status of the render.
OfxStatus finish(RenderStatus& status)
{
    if (!status.pollAbort() || status.errorCode == 0) return kOfxStatOK;
    return status.errorCode == kErrorOutOfMemory ? kOfxStatErrMemory : kOfxStatFailed;
}

}  // namespace

OfxStatus load(const Call&)
{
    return loadStatus(hostRecord());
}

OfxStatus unload(const Call&)
{
    forgetHost();
    if (pluginHooks().unload != nullptr) pluginHooks().unload();
    return kOfxStatOK;
}

OfxStatus leaveToHost(const Call&)
{
    return kOfxStatReplyDefault;
}

OfxStatus describe(const Call& call)
{
    if (const OfxStatus status = describeHost(hostRecord())) return status;
    OvOfxPropertySet properties;
    if (const OfxStatus status = effectProperties(call.effect, properties)) return status;
    const std::unique_ptr<OvOfxEffect> effect = pluginHooks().makeEffect();
    effect->describe();
    if (!hasNeededFeatures(*effect)) return kOfxStatErrMissingHostFeature;
    return effect->writePluginProperties(properties);
}

OfxStatus describeInContext(const Call& call)
{
    std::string context;
    const OvOfxPropertySet inArgs(call.inArgs);
    if (const OfxStatus status = inArgs.getString(kOfxImageEffectPropContext, context)) {
        return status;
    }
    const std::unique_ptr<OvOfxEffect> effect = pluginHooks().makeEffect();
    effect->describe();
    effect->bind(contextFromName(context.c_str()), nullptr);
    if (const OfxStatus status = defineClips(*effect, call.effect)) return status;
    if (const OfxStatus status = defineParameters(*effect, call.effect)) return status;
    OvOfxPropertySet properties;
    static_cast<void>(effectProperties(call.effect, properties));
    writeClipPreferenceSlaves(*effect, properties);
    return kOfxStatOK;
}

OfxStatus createInstance(const Call& call)
{
    OvOfxPropertySet properties;
    if (const OfxStatus status = effectProperties(call.effect, properties)) return status;
    std::string context;
    if (const OfxStatus status = properties.getString(kOfxImageEffectPropContext, context)) {
        return status;
    }
    auto record = std::make_unique<OvOfxInstanceRecord>(call.effect);
    std::unique_ptr<OvOfxEffect> effect = pluginHooks().makeEffect();
    effect->bind(contextFromName(context.c_str()), std::move(record));
    effect->instanceCreated();
    if (const OfxStatus status = properties.setPointer(kOfxPropInstanceData, effect.get())) {
        destroy(std::move(effect));
        return status;
    }
    OfxStatus status = kOfxStatOK;
    try {
        status = properties.setInt(kOfxImageEffectInstancePropSequentialRender,
                                   effect->descriptor.sequentialRender ? 1 : 0);
        notifyAll(*effect);
    } catch (...) {
        properties.setPointer(kOfxPropInstanceData, nullptr);
        throw;
    }
    if (status != kOfxStatOK && status != kOfxStatReplyDefault) {
        // The host has no instance: no later action would find this one.
        properties.setPointer(kOfxPropInstanceData, nullptr);
        destroy(std::move(effect));
        return status;
    }
    // C boundary: the host keeps the instance from here on, and destroyInstance deletes it.
    static_cast<void>(effect.release());
    return status;
}

OfxStatus destroyInstance(const Call& call)
{
    OvOfxPropertySet properties;
    OvOfxEffect* effect = findInstance(call.effect, properties);
    try {
        // C boundary: takes back what createInstance gave to the host.
        if (effect != nullptr) destroy(std::unique_ptr<OvOfxEffect>(effect));
    } catch (...) {
        properties.setPointer(kOfxPropInstanceData, nullptr);
        throw;
    }
    return properties.setPointer(kOfxPropInstanceData, nullptr);
}

OfxStatus purgeCaches(const Call& call)
{
    OvOfxEffect* effect = findInstance(call);
    if (effect != nullptr) InstanceQuery(*effect, nullptr, nullptr)->purgeCaches();
    return kOfxStatReplyDefault;
}

OfxStatus syncPrivateData(const Call& call)
{
    OvOfxEffect* effect = findInstance(call);
    return effect != nullptr && effect->syncPrivateData() ? kOfxStatOK : kOfxStatReplyDefault;
}

OfxStatus beginInstanceChanged(const Call& call)
{
    if (OvOfxEffect* effect = findInstance(call)) {
        effect->beginInstanceChanged(readChangeRecord(OvOfxPropertySet(call.inArgs), false));
    }
    return kOfxStatReplyDefault;
}

OfxStatus instanceChanged(const Call& call)
{
    OvOfxEffect* effect = findInstance(call);
    if (effect == nullptr) return kOfxStatReplyDefault;
    const OvOfxPropertySet inArgs(call.inArgs);
    const OvOfxChangeRecord change = readChangeRecord(inArgs, true);
    // A render-only machine has no user, so a user edit is an error of the host and fatal.
    if (hostDescription().isBackground && change.reason == OvChangeReason::UserEdited) {
        return kOfxStatErrFatal;
    }
    // Clips have no change callback.
    if (inArgs.stringOr(kOfxPropType, "") != kOfxTypeParameter) return kOfxStatReplyDefault;
    const std::string name = inArgs.stringOr(kOfxPropName, "");
    if (OvOfxParam* param = effect->findParam(name.c_str())) {
        param->changeTime = change.time;
        notify(*param, change);
    }
    return kOfxStatReplyDefault;
}

OfxStatus endInstanceChanged(const Call& call)
{
    if (OvOfxEffect* effect = findInstance(call)) {
        effect->endInstanceChanged(readChangeRecord(OvOfxPropertySet(call.inArgs), false));
    }
    return kOfxStatReplyDefault;
}

OfxStatus getRegionOfDefinition(const Call& call)
{
    OvOfxEffect* effect = findInstance(call);
    if (effect == nullptr) return kOfxStatReplyDefault;
    const InstanceQuery query(*effect, call.inArgs, call.outArgs);
    OvRect rect;
    if (!query->getRegionOfDefinition(rect)) return kOfxStatReplyDefault;
    writeRect(query.outArgs(), kOfxImageEffectPropRegionOfDefinition,
              query.wrapper().toCanonical(rect));
    return kOfxStatOK;
}

OfxStatus getRegionsOfInterest(const Call& call)
{
    OvOfxEffect* effect = findInstance(call);
    if (effect == nullptr) return kOfxStatReplyDefault;
    const InstanceQuery query(*effect, call.inArgs, call.outArgs);
    const OvRect output = readRect(query.inArgs(), kOfxImageEffectPropRegionOfInterest);
    return queryInputs(*effect, [&](const std::string& clip) {
        OvRect rect;
        if (!query->getRegionOfInterest(clip.c_str(), output, rect)) return false;
        writeRect(query.outArgs(), kOfxImageClipPropRoIPrefix + clip,
                  query.wrapper().toCanonical(rect));
        return true;
    });
}

OfxStatus getTimeDomain(const Call& call)
{
    return runInFrame(call, OvActionKind::TimeDomain, &OvOfxEffect::getTimeDomain);
}

OfxStatus getFramesNeeded(const Call& call)
{
    OvOfxEffect* effect = findInstance(call);
    if (effect == nullptr) return kOfxStatReplyDefault;
    const InstanceQuery query(*effect, call.inArgs, call.outArgs);
    return queryInputs(
        *effect, [&](const std::string& clip) { return query->getFramesNeeded(clip.c_str()); });
}

OfxStatus getClipPreferences(const Call& call)
{
    return runInFrame(call, OvActionKind::ClipPreferences, &OvOfxEffect::getClipPreferences);
}

OfxStatus isIdentity(const Call& call)
{
    OvOfxEffect* effect = findInstance(call);
    if (effect == nullptr) return kOfxStatReplyDefault;
    const InstanceQuery query(*effect, call.inArgs, call.outArgs);
    std::string clip;
    double time = query.wrapper().time();
    if (!query->isIdentity(clip, time)) return kOfxStatReplyDefault;
    query.outArgs().setString(kOfxPropName, clip.c_str());
    query.outArgs().setDouble(kOfxPropTime, time);
    return kOfxStatOK;
}

OfxStatus render(const Call& call)
{
    OvOfxEffect* effect = findInstance(call);
    if (effect == nullptr) return kOfxStatReplyDefault;
    const InstanceAction action(*effect, call.inArgs, nullptr);
    const OvOfxClip& output = effect->outputClip();
    effect->render(action.wrapper(), output.components(), output.pixelDepth());
    return finish(action.wrapper().renderStatus());
}

}  // namespace Orvane::Actions
