#pragma once

/// One plug-in in one host: set up, loaded, described in contexts, unloaded at the end. For most
/// uses `start`, `describeInContext` and `createInstance` are enough; the single steps are for
/// tests.

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "host/Descriptor.h"
#include "host/EmbeddedHost.h"
#include "host/Instance.h"
#include "host/Plugin.h"

namespace Tesseret::Host {

class Effect {
public:
    /// Passes the host's record to the plug-in. The host outlives the effect; the library stays
    /// loaded.
    Effect(EmbeddedHost& host, std::shared_ptr<PluginLibrary> library, OfxPlugin& plugin);
    /// Sends Unload when the plug-in was loaded. All instances must be gone.
    ~Effect();
    Effect(const Effect&) = delete;
    Effect& operator=(const Effect&) = delete;

    /// Loads and describes as this host does; throws HostError when the plug-in refuses.
    void start();
    /// As the plug-in described itself; valid after `start`.
    EffectDescription description() const;
    /// Describes in a context unless that was done, and returns the description. Throws HostError
    /// when the plug-in does not support the context or fails.
    const ContextDescription& describeInContext(std::string_view context);
    /// Makes an instance, with a listener that is not owned; describes in the context first if
    /// needed. Throws HostError with the plug-in's status when it refuses. Once the context is
    /// described, several threads may make instances at once.
    std::unique_ptr<Instance> createInstance(std::string_view context,
                                             InstanceListener* listener = nullptr);

    /// Forgets all contexts, loads and describes; throws HostError when the plug-in refuses.
    void loadAndDescribe();

    // Single steps; each sends one action and returns its status.
    OfxStatus sendLoad();
    OfxStatus sendUnload();
    OfxStatus sendDescribe();
    OfxStatus sendDescribeInContext(std::string_view context);

    /// Sends any action to the plug-in's main entry; see EmbeddedHost::send.
    OfxStatus send(const char* action, const void* handle, OfxPropertySetHandle inArgs,
                   OfxPropertySetHandle outArgs);

    EmbeddedHost& host() const { return host_; }
    OfxPlugin& plugin() const { return plugin_; }
    Descriptor& descriptor() { return *descriptor_; }
    /// Null when the context was not described.
    Descriptor* contextDescriptor(std::string_view context) const;

private:
    struct Described {
        std::unique_ptr<Descriptor> descriptor;
        ContextDescription description;
    };

    EmbeddedHost& host_;
    std::shared_ptr<PluginLibrary> library_;
    OfxPlugin& plugin_;
    bool loaded_ = false;
    std::unique_ptr<Descriptor> descriptor_;
    std::map<std::string, Described, std::less<>> contexts_;
};

}  // namespace Tesseret::Host
