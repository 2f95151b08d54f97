/// Instances: parameter values, and notifying the plug-in of changes.

#include <algorithm>
#include <utility>

#include "host/Effect.h"
#include "host/HostError.h"
#include "host/Instance.h"

namespace Tesseret::Host {

namespace {

/// Increments a depth for its lifetime.
class Deeper {
public:
    explicit Deeper(int& depth) : depth_(depth) { ++depth_; }
    ~Deeper() { --depth_; }
    Deeper(const Deeper&) = delete;
    Deeper& operator=(const Deeper&) = delete;

private:
    int& depth_;
};

}  // namespace

Parameter& Instance::need(std::string_view name) const
{
    Parameter* const found = parameters().find(name);
    if (!found) throw HostError("there is no parameter " + std::string(name) + " in " + context_);
    return *found;
}

ParameterValue Instance::value(std::string_view parameter) const
{
    return need(parameter).value();
}

ParameterValue Instance::valueAt(std::string_view parameter, OfxTime time) const
{
    return need(parameter).valueAt(time);
}

OfxStatus Instance::set(std::string_view parameter, ParameterValue value, const char* reason,
                        OfxTime time)
{
    Parameter& target = need(parameter);
    const ParameterValue before = target.value();
    if (!target.setValue(std::move(value))) {
        throw HostError("the value does not fit the parameter " + std::string(parameter));
    }
    notifyChange({target, before, target.value(), reason});
    return announce(kOfxTypeParameter, parameter, reason, time);
}

OfxStatus Instance::setAt(std::string_view parameter, OfxTime time, ParameterValue value,
                          const char* reason)
{
    Parameter& target = need(parameter);
    const ParameterValue before = target.valueAt(time);
    if (!target.setValueAt(time, std::move(value))) {
        throw HostError("the value does not fit the parameter " + std::string(parameter));
    }
    notifyChange({target, before, target.valueAt(time), reason});
    return announce(kOfxTypeParameter, parameter, reason, time);
}

OfxStatus Instance::press(std::string_view button, const char* reason, OfxTime time)
{
    if (need(button).type() != kOfxParamTypePushButton) {
        throw HostError(std::string(button) + " is no push button");
    }
    return announce(kOfxTypeParameter, button, reason, time);
}

OfxStatus Instance::announce(const char* objectType, std::string_view name, const char* reason,
                             OfxTime time)
{
    if (std::find(slaveParameters_.begin(), slaveParameters_.end(), name) !=
        slaveParameters_.end()) {
        preferencesStale_ = true;
    }
    OfxStatus status = kOfxStatOK;
    {
        const Deeper deeper(changeDepth_);
        beginChanged(reason);
        status = changed(objectType, name, reason, time, renderScale_);
        endChanged(reason);
    }
    announceEdits();
    return status;
}

void Instance::notifyChange(const ParameterChange& change)
{
    if (!listener_ || !created_ || change.before == change.after) return;
    listener_->parameterChanged(*this, change);
}

void Instance::pluginEdited(const ParameterChange& change)
{
    notifyChange(change);
    const std::string& name = change.parameter.name();
    const bool waiting = std::find(edited_.begin(), edited_.end(), name) != edited_.end();
    if (!created_ || announcing_ > 0 || waiting) return;
    edited_.push_back(name);
    announceEdits();
}

void Instance::pluginBeganEdit(std::string_view label)
{
    if (listener_) listener_->editBegan(*this, label);
}

void Instance::pluginEndedEdit()
{
    if (listener_) listener_->editEnded(*this);
}

void Instance::announceEdits()
{
    if (actionDepth_ > 0 || changeDepth_ > 0 || announcing_ > 0) return;
    const Deeper deeper(announcing_);
    for (const std::string& name : std::exchange(edited_, {})) {
        announce(kOfxTypeParameter, name, kOfxChangePluginEdited, currentTime_);
    }
}

OfxStatus Instance::changed(const char* objectType, std::string_view name, const char* reason,
                            OfxTime time, OfxPointD scale)
{
    PropertySet inArgs(host(), "inArgs of InstanceChanged");
    inArgs.assign(kOfxPropType, {objectType});
    inArgs.assign(kOfxPropName, {std::string(name)});
    inArgs.assign(kOfxPropChangeReason, {reason});
    inArgs.assign(kOfxPropTime, {time});
    inArgs.assign(kOfxImageEffectPropRenderScale, {scale.x, scale.y});
    return action(kOfxActionInstanceChanged, &inArgs);
}

OfxStatus Instance::beginChanged(const char* reason)
{
    PropertySet inArgs(host(), "inArgs of BeginInstanceChanged");
    inArgs.assign(kOfxPropChangeReason, {reason});
    return action(kOfxActionBeginInstanceChanged, &inArgs);
}

OfxStatus Instance::endChanged(const char* reason)
{
    PropertySet inArgs(host(), "inArgs of EndInstanceChanged");
    inArgs.assign(kOfxPropChangeReason, {reason});
    return action(kOfxActionEndInstanceChanged, &inArgs);
}

OfxStatus Instance::action(const char* name, PropertySet* inArgs, PropertySet* outArgs)
{
    if (inArgs) currentTime_ = inArgs->doubleOr(kOfxPropTime, currentTime_);
    if (actionDepth_ == 0) updateProperties();
    OfxStatus status = kOfxStatFailed;
    try {
        const Deeper deeper(actionDepth_);
        status = effect_.send(name, handle(), inArgs ? inArgs->handle() : nullptr,
                              outArgs ? outArgs->handle() : nullptr);
    } catch (...) {
        if (actionDepth_ == 0) releaseImages(name, status);
        throw;
    }
    if (actionDepth_ > 0) return status;
    releaseImages(name, status);
    announceEdits();
    return status;
}

/// Releases images that an action did not release.
void Instance::releaseImages(const char* action, OfxStatus status)
{
    for (const auto& each : clips()) {
        if (const std::size_t held = each->releaseAll()) {
            host().badCall(std::string(action ? action : "null") + " left " + std::to_string(held) +
                               " images of " + each->name() + " unreleased",
                           status);
        }
    }
}

}  // namespace Tesseret::Host
