#include <memory>

#include "effect/EffectTable.h"
#include "effect/TesseretEffect.h"
#include "overlay/OverlayEntry.h"
#include "products/OFX/Support/Plugin.h"

namespace Orvane {

const PluginHooks& pluginHooks()
{
    static const PluginHooks hooks = {
        .makeEffect = []() -> std::unique_ptr<OvOfxEffect> {
            return std::make_unique<Tesseret::TesseretEffect>();
        },
        .identity =
            [] {
                return PluginIdentity{.identifier = Tesseret::kIdentifier,
                                      .versionMajor = Tesseret::kVersionMajor,
                                      .versionMinor = Tesseret::kVersionMinor};
            },
        .unload = &unloadOverlays,
    };
    return hooks;
}

}  // namespace Orvane
