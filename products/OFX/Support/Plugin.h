#pragma once

/// The only dependency upwards: what the host interface layer needs from the effect linked with it.

#include <memory>

namespace Orvane {

class OvOfxEffect;

/// Identifies the plug-in to hosts. Projects store it.
struct PluginIdentity {
    const char* identifier;  ///< reversed domain and product, all lower case
    unsigned int versionMajor;
    unsigned int versionMinor;
};

struct PluginHooks {
    /// A new effect, without an instance.
    std::unique_ptr<OvOfxEffect> (*makeEffect)();
    PluginIdentity (*identity)();
    /// Frees the effect's process-wide resources; null when there are none.
    void (*unload)();
};

/// Defined by the effect.
const PluginHooks& pluginHooks();

}  // namespace Orvane
