#include "host/Effect.h"

#include <algorithm>

#include "host/HostError.h"
#include "host/SuiteGuard.h"

namespace Tesseret::Host {

namespace {

/// Marks a descriptor as being described while it lives.
class Describing {
public:
    explicit Describing(Descriptor& descriptor) : descriptor_(descriptor)
    {
        descriptor_.setDescribing(true);
    }
    ~Describing() { descriptor_.setDescribing(false); }
    Describing(const Describing&) = delete;
    Describing& operator=(const Describing&) = delete;

private:
    Descriptor& descriptor_;
};

}  // namespace

Effect::Effect(EmbeddedHost& host, std::shared_ptr<PluginLibrary> library, OfxPlugin& plugin)
    : host_(host),
      library_(std::move(library)),
      plugin_(plugin),
      descriptor_(std::make_unique<Descriptor>(host))
{
    const EmbeddedHost::Scope scope(host_);
    HeldException held;
    if (plugin_.setHost) plugin_.setHost(host_.record());
    held.rethrow();
}

Effect::~Effect()
{
    if (loaded_ && host_.behaviour().sendsUnload()) quietly([this] { sendUnload(); });
}

OfxStatus Effect::send(const char* action, const void* handle, OfxPropertySetHandle inArgs,
                       OfxPropertySetHandle outArgs)
{
    return host_.send(plugin_.mainEntry, action, handle, inArgs, outArgs);
}

OfxStatus Effect::sendLoad()
{
    const OfxStatus status = send(kOfxActionLoad, nullptr, nullptr, nullptr);
    loaded_ = status == kOfxStatOK || status == kOfxStatReplyDefault;
    return status;
}

OfxStatus Effect::sendUnload()
{
    loaded_ = false;
    return send(kOfxActionUnload, nullptr, nullptr, nullptr);
}

OfxStatus Effect::sendDescribe()
{
    auto fresh = std::make_unique<Descriptor>(host_);
    const Describing describing(*fresh);
    const OfxStatus status = send(kOfxActionDescribe, fresh->handle(), nullptr, nullptr);
    descriptor_ = std::move(fresh);
    return status;
}

OfxStatus Effect::sendDescribeInContext(std::string_view context)
{
    PropertySet inArgs(host_, "inArgs of DescribeInContext");
    inArgs.assign(kOfxImageEffectPropContext, {std::string(context)});
    auto fresh = std::make_unique<Descriptor>(host_, *descriptor_, std::string(context));
    OfxStatus status = kOfxStatOK;
    {
        const Describing describing(*fresh);
        status =
            send(kOfxImageEffectActionDescribeInContext, fresh->handle(), inArgs.handle(), nullptr);
    }
    ContextDescription description = fresh->describeContext();
    contexts_.insert_or_assign(std::string(context),
                               Described{std::move(fresh), std::move(description)});
    return status;
}

void Effect::loadAndDescribe()
{
    const auto require = [this](const char* action, OfxStatus status, bool isAccepted) {
        if (isAccepted) return;
        throw HostError(std::string(plugin_.pluginIdentifier) + " returns " + statusText(status) +
                            " for " + action,
                        status);
    };
    contexts_.clear();
    const OfxStatus loaded = sendLoad();
    require(kOfxActionLoad, loaded, host_.behaviour().acceptsLoad(loaded));
    const OfxStatus described = sendDescribe();
    require(kOfxActionDescribe, described, described == kOfxStatOK);
}

void Effect::start()
{
    host_.behaviour().start(*this);
}

EffectDescription Effect::description() const
{
    EffectDescription result = descriptor_->describeEffect();
    result.identifier = plugin_.pluginIdentifier;
    result.versionMajor = plugin_.pluginVersionMajor;
    result.versionMinor = plugin_.pluginVersionMinor;
    return result;
}

Descriptor* Effect::contextDescriptor(std::string_view context) const
{
    const auto found = contexts_.find(context);
    return found == contexts_.end() ? nullptr : found->second.descriptor.get();
}

const ContextDescription& Effect::describeInContext(std::string_view context)
{
    if (const auto known = contexts_.find(context); known != contexts_.end()) {
        return known->second.description;
    }
    const std::vector<std::string> supported =
        descriptor_->properties().strings(kOfxImageEffectPropSupportedContexts);
    if (std::find(supported.begin(), supported.end(), context) == supported.end()) {
        throw HostError(std::string(plugin_.pluginIdentifier) + " does not support the context " +
                        std::string(context));
    }
    if (!host_.offers(kOfxImageEffectPropSupportedContexts, context)) {
        throw HostError("the host does not offer the context " + std::string(context));
    }
    if (const OfxStatus status = sendDescribeInContext(context)) {
        contexts_.erase(std::string(context));
        throw HostError(std::string(plugin_.pluginIdentifier) + " cannot be described in " +
                            std::string(context) + ", it returns " + statusText(status),
                        status);
    }
    return contexts_.find(context)->second.description;
}

std::unique_ptr<Instance> Effect::createInstance(std::string_view context,
                                                 InstanceListener* listener)
{
    host_.behaviour().prepareInstance(*this);
    describeInContext(context);
    return std::make_unique<Instance>(*this, *contextDescriptor(context), listener);
}

}  // namespace Tesseret::Host
