#include "host/EmbeddedHost.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "host/HostError.h"
#include "host/Instance.h"
#include "host/SuiteGuard.h"
#include "host/Suites.h"
#include "host/ThreadPool.h"
#include "ofx/ofxImageEffect.h"
#include "ofx/ofxParam.h"
#include "platform/Processors.h"

namespace Tesseret::Host {

namespace {

thread_local EmbeddedHost* currentHost = nullptr;
thread_local bool isAlone = false;

std::mutex& hostsMutex()
{
    static std::mutex theMutex;
    return theMutex;
}

/// All existing hosts, the newest last.
std::vector<EmbeddedHost*>& hosts()
{
    static std::vector<EmbeddedHost*> theHosts;
    return theHosts;
}

const void* fetchSuite(OfxPropertySetHandle host, const char* name, int version)
{
    auto* const set = static_cast<PropertySet*>(findObject(HandleKind::PropertySet, host));
    if (!set || set != &set->host().properties()) {
        badCall("fetchSuite: not the host's property set", kOfxStatErrBadHandle);
        return nullptr;
    }
    return set->host().fetchSuite(name, version);
}

}  // namespace

EmbeddedHost::EmbeddedHost(HostOptions options)
    : behaviour_(options.behaviour ? options.behaviour : &standard_),
      onReport_(std::move(options.onReport)),
      onMessage_(std::move(options.onMessage)),
      listener_(options.listener),
      properties_(*this, "host"),
      record_{properties_.handle(), kGuarded<&Host::fetchSuite>},
      pool_(std::make_unique<ThreadPool>(
          *this, options.threads ? options.threads : Orvane::availableProcessors()))
{
    describeSelf(options.identity);
    const std::lock_guard lock(hostsMutex());
    hosts().push_back(this);
}

EmbeddedHost::~EmbeddedHost()
{
    pool_.reset();  // its threads end before anything they might use
    const std::lock_guard lock(hostsMutex());
    std::erase(hosts(), this);
}

void EmbeddedHost::describeSelf(const HostIdentity& identity)
{
    const auto number = [this](const char* name, int value) {
        properties_.define(name, {value}, Access::ReadOnly);
    };
    const auto text = [this](const char* name, std::vector<PropertyValue> values) {
        properties_.define(name, std::move(values), Access::ReadOnly);
    };
    text(kOfxPropType, {kOfxTypeImageEffectHost});
    text(kOfxPropName, {identity.name});
    text(kOfxPropLabel, {identity.label});
    text(kOfxPropVersionLabel, {"1.0"});
    properties_.define(kOfxPropAPIVersion, {1, 0}, Access::ReadOnly);
    properties_.define(kOfxPropVersion, {1, 0}, Access::ReadOnly);
    number(kOfxImageEffectHostPropIsBackground, identity.isBackground);
    number(kOfxImageEffectPropSupportsOverlays, identity.supportsOverlays);
    number(kOfxImageEffectPropSupportsMultiResolution, 1);
    number(kOfxImageEffectPropSupportsTiles, 1);
    number(kOfxImageEffectPropTemporalClipAccess, identity.temporalClipAccess);
    number(kOfxImageEffectPropSupportsMultipleClipDepths, 0);
    number(kOfxImageEffectPropSupportsMultipleClipPARs, 0);
    number(kOfxImageEffectPropSetableFrameRate, 0);
    number(kOfxImageEffectPropSetableFielding, 0);
    number(kOfxImageEffectInstancePropSequentialRender, 1);
    number(kOfxParamHostPropSupportsCustomInteract, 0);
    number(kOfxParamHostPropSupportsStringAnimation, identity.stringAnimation);
    number(kOfxParamHostPropSupportsChoiceAnimation, identity.choiceAnimation);
    number(kOfxParamHostPropSupportsBooleanAnimation, identity.booleanAnimation);
    number(kOfxParamHostPropSupportsCustomAnimation, 0);
    if (identity.maxParameters) number(kOfxParamHostPropMaxParameters, *identity.maxParameters);
    if (identity.maxPages) number(kOfxParamHostPropMaxPages, *identity.maxPages);
    if (const auto& counts = identity.pageRowsAndColumns) {
        properties_.define(kOfxParamHostPropPageRowColumnCount, {counts->x, counts->y},
                           Access::ReadOnly);
    }
    text(kOfxImageEffectPropSupportedComponents,
         {kOfxImageComponentRGBA, kOfxImageComponentRGB, kOfxImageComponentAlpha});
    text(kOfxImageEffectPropSupportedContexts,
         {identity.contexts.begin(), identity.contexts.end()});
    std::vector<PropertyValue> depths;
    for (const Depth depth : identity.depths) depths.emplace_back(depthName(depth));
    text(kOfxImageEffectPropSupportedPixelDepths, std::move(depths));
    for (const std::string& name : identity.missingProperties) properties_.remove(name);
}

unsigned int EmbeddedHost::threads() const
{
    return isAlone ? 1 : pool_->size();
}

EmbeddedHost::AloneScope::AloneScope() : previous_(std::exchange(isAlone, true)) {}

EmbeddedHost::AloneScope::~AloneScope()
{
    isAlone = previous_;
}

bool EmbeddedHost::offers(const char* property, std::string_view value) const
{
    const std::vector<std::string> offered = properties_.strings(property);
    return offered.empty() || std::find(offered.begin(), offered.end(), value) != offered.end();
}

const void* EmbeddedHost::fetchSuite(const char* name, int version)
{
    const struct {
        const char* name;
        const void* suite;
    } suites[] = {
        {kOfxPropertySuite, &propertySuite()},
        {kOfxImageEffectSuite, &imageEffectSuite()},
        {kOfxParameterSuite, &parameterSuite()},
        {kOfxMemorySuite, &memorySuite()},
        {kOfxMultiThreadSuite, &multiThreadSuite()},
        {kOfxMessageSuite, &messageSuite()},
        {kOfxInteractSuite, &interactSuite()},
        {kTesseretObserverSuite, listener_ ? &observerSuite() : nullptr},
        {kTesseretRecordSuite, listener_ ? &recordSuite() : nullptr},
    };
    const std::string wanted = name ? name : "";
    const void* found = nullptr;
    for (const auto& suite : suites) {
        if (wanted == suite.name && version == 1) found = suite.suite;
    }
    return behaviour_->suiteFetched(wanted, version, found);
}

OfxStatus EmbeddedHost::send(OfxPluginEntryPoint* entry, const char* action, const void* handle,
                             OfxPropertySetHandle inArgs, OfxPropertySetHandle outArgs)
{
    const Scope scope(*this);
    HeldException held;
    OfxStatus status = kOfxStatErrFatal;
    try {
        status = entry(action, handle, inArgs, outArgs);
    } catch (...) {
        badCall(std::string(action ? action : "null") + ": an exception left the plug-in", status);
    }
    behaviour_->actionSent(action ? action : "", handle, status);
    held.rethrow();
    return status;
}

OfxStatus EmbeddedHost::runOnThreads(OfxThreadFunctionV1* function, unsigned int calls,
                                     void* argument)
{
    return pool_->run(function, calls, argument)
               ? kOfxStatOK
               : badCall("multiThread: an exception left the function", kOfxStatFailed);
}

void EmbeddedHost::report(Report::Kind kind, const std::string& text)
{
    const Report report{kind, text};
    behaviour_->reported(report);
    if (onReport_) {
        const std::lock_guard lock(sinkMutex_);
        onReport_(report);
    }
}

OfxStatus EmbeddedHost::badCall(const std::string& text, OfxStatus status)
{
    report(Report::Kind::BadCall, text + ", returned " + statusText(status));
    return status;
}

OfxStatus EmbeddedHost::post(const Message& message)
{
    InstanceListener* const listener = message.instance ? message.instance->listener() : nullptr;
    std::optional<OfxStatus> status;
    {
        const std::lock_guard lock(sinkMutex_);
        if (listener) status = listener->messagePosted(message);
        if (!status && onMessage_) status = onMessage_(message);
    }
    const bool isQuestion = message.type == kOfxMessageQuestion;
    return behaviour_->messagePosted(
        message, status.value_or(isQuestion ? kOfxStatReplyDefault : kOfxStatOK));
}

EmbeddedHost* EmbeddedHost::current()
{
    if (currentHost) return currentHost;
    const std::lock_guard lock(hostsMutex());
    return hosts().empty() ? nullptr : hosts().back();
}

EmbeddedHost::Scope::Scope(EmbeddedHost& host) : previous_(currentHost)
{
    currentHost = &host;
}

EmbeddedHost::Scope::~Scope()
{
    currentHost = previous_;
}

OfxStatus badCall(const std::string& text, OfxStatus status)
{
    EmbeddedHost* const host = EmbeddedHost::current();
    return host ? host->badCall(text, status) : status;
}

}  // namespace Tesseret::Host
