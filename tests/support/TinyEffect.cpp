#include "tests/support/TinyEffect.h"

#include <utility>

#include "products/OFX/Support/ParamTypes.h"
#include "products/OFX/Support/Plugin.h"

namespace Tesseret::Fixtures {
namespace {

using namespace Orvane;

TinyBehaviour behaviour;

void report(const std::string& hook, OvOfxEffect& effect)
{
    if (behaviour.isRecording) behaviour.calls.push_back(hook);
    if (behaviour.onHook) behaviour.onHook(hook, effect);
}

class TinyInterface final : public OvOfxEffectInterface {
public:
    using OvOfxEffectInterface::OvOfxEffectInterface;

    bool getRegionOfDefinition(OvRect& rect) override
    {
        rect = behaviour.rect;
        return handle("getRegionOfDefinition");
    }
    bool getRegionOfInterest(const char* clip, const OvRect& output, OvRect& rect) override
    {
        // One pixel wider than requested, so that tests see the difference.
        rect = output;
        rect.xMax += 1.0f;
        return handle("getRegionOfInterest " + std::string(clip));
    }
    bool getFramesNeeded(const char* clip) override
    {
        return handle("getFramesNeeded " + std::string(clip));
    }
    bool isIdentity(std::string& clip, double& time) override
    {
        clip = "Source";
        time += 1.0;
        return handle("isIdentity");
    }
    void purgeCaches() override { handle("purgeCaches"); }

private:
    bool handle(const std::string& query)
    {
        report(query, wrapper().effect());
        return behaviour.handlesQueries;
    }
};

class TinyEffect final : public OvOfxEffect {
public:
    TinyEffect()
    {
        descriptor.label = "Tiny";
        descriptor.contexts = {"Filter", "General"};
        descriptor.pixelDepths = {"byte"};
        descriptor.temporalClipAccess = behaviour.needsTemporalAccess;
        descriptor.sequentialRender = behaviour.sequentialRender;
        auto& source = own<OvOfxClip>("Source");
        auto& extra = own<OvOfxClip>("Extra");
        source.supportedComponents = extra.supportedComponents = {"RGBA"};
        extra.optional = true;
        outputClip().supportedComponents = {"RGBA"};
        container(OvContext::Filter)->namedClips.front().clip = &source;
        container(OvContext::General)->clips = {&source, &extra};
        for (const char* name : {"size", "height"}) {
            auto& param = own<OvOfxIntegerParam>(name);
            param.clipPreferencesSlave = behaviour.preferencesSlave == name;
            param.onChange = [this, name](const OvOfxChangeRecord& change) {
                report(std::string("change ") + name + " " +
                       std::to_string(static_cast<int>(change.reason)) + " " +
                       std::to_string(static_cast<int>(change.time)));
            };
            for (const OvContext each : {OvContext::Filter, OvContext::General}) {
                container(each)->params.push_back(&param);
            }
        }
    }
    ~TinyEffect() override
    {
        if (destroyed_ != nullptr) ++*destroyed_;
    }

    std::unique_ptr<OvOfxEffectInterface> makeInterface(OvOfxHostWrapper& wrapper) override
    {
        return std::make_unique<TinyInterface>(wrapper);
    }
    void instanceCreated() override { report("instanceCreated"); }
    void instanceDestroyed() override { report("instanceDestroyed"); }
    void getTimeDomain() override { report("getTimeDomain"); }
    bool syncPrivateData() override
    {
        report("syncPrivateData");
        return behaviour.handlesQueries;
    }
    void beginInstanceChanged(const OvOfxChangeRecord& change) override
    {
        report("beginInstanceChanged " + std::to_string(static_cast<int>(change.reason)));
    }
    void endInstanceChanged(const OvOfxChangeRecord& change) override
    {
        report("endInstanceChanged " + std::to_string(static_cast<int>(change.reason)));
    }
    void getClipPreferences() override { report("getClipPreferences"); }
    void describe() override { report("describe"); }
    void render(OvOfxHostWrapper& wrapper, OvComponents, OvDepth) override
    {
        if (behaviour.onRender) behaviour.onRender(wrapper);
    }

private:
    void report(const std::string& hook) { Fixtures::report(hook, *this); }

    std::atomic<int>* destroyed_ = behaviour.destroyed;
};

}  // namespace

TinyBehaviour& tinyBehaviour()
{
    return behaviour;
}

TinyHost::TinyHost(const HostQuirks& quirks) : quirky_(quirks), host_(quirky_.options(2))
{
    behaviour = {};
    effect_ = std::make_unique<Host::Effect>(host_, nullptr, *OfxGetPlugin(0));
}

TinyHost::~TinyHost()
{
    behaviour = {};
    effect_->sendUnload();
}

void TinyHost::start()
{
    effect_->start();
    started_ = true;
}

std::unique_ptr<Host::Instance> TinyHost::create(const char* context)
{
    if (!started_) start();
    return effect_->createInstance(context);
}

std::vector<std::string> TinyHost::writesTo(std::string_view set) const
{
    std::vector<std::string> names;
    for (const PropertyWrite& write : quirky_.calls.propertyWrites()) {
        if (write.set == set) names.push_back(write.property);
    }
    return names;
}

std::shared_ptr<Host::ClipSource> tinySource()
{
    return std::make_shared<Host::StillSource>(
        std::make_shared<Picture>(OfxRectI{0, 0, 8, 4}, Depth::Byte));
}

}  // namespace Tesseret::Fixtures

namespace Orvane {

const PluginHooks& pluginHooks()
{
    static const PluginHooks hooks{
        .makeEffect = []() -> std::unique_ptr<OvOfxEffect> {
            return std::make_unique<Tesseret::Fixtures::TinyEffect>();
        },
        .identity =
            [] {
                return PluginIdentity{"com.example.tiny", 3, 14};
            },
        .unload =
            [] {
                if (Tesseret::Fixtures::tinyBehaviour().unloads != nullptr) {
                    ++*Tesseret::Fixtures::tinyBehaviour().unloads;
                }
            }};
    return hooks;
}

}  // namespace Orvane
