#pragma once

/// The one seam upward: what the host interface layer needs of the effect that is linked with it.

#include <memory>

namespace Orvane {

class OvOfxEffect;

/// What hosts tell plug-ins apart by. Projects store it.
struct PluginIdentity {
    const char* identifier;  ///< reversed domain and product, all lower case
    unsigned int versionMajor;
    unsigned int versionMinor;
};

struct PluginHooks {
    /// A new effect, without an instance.
    std::unique_ptr<OvOfxEffect> (*makeEffect)();
    PluginIdentity (*identity)();
    /// Frees what the effect keeps for the whole process; null when that is nothing.
    void (*unload)();
};

/// Defined by the effect.
const PluginHooks& pluginHooks();

}  // namespace Orvane
