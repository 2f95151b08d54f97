#pragma once

#include <memory>

#include "engine/RenderContext.h"
#include "products/OFX/Support/EffectInterface.h"
#include "products/OFX/Support/HostWrapper.h"

namespace Tesseret {

/// What the engine may ask during one render action, answered by the action's host wrapper and the
/// effect's interface.
class EffectRenderContext final : public Orvane::Engine::RenderContext {
public:
    /// Both outlive the context. Asks the host whether somebody watches the render.
    EffectRenderContext(Orvane::OvOfxHostWrapper& wrapper,
                        Orvane::OvOfxEffectInterface& effectInterface);

    double time() override;
    Orvane::Engine::Vec2 renderScale() override;
    double pixelAspectRatio() override;
    Orvane::Engine::Window renderWindow() override;
    Orvane::RenderStatus& renderStatus() override;

    bool hasParam(const char* name) override;
    double doubleAt(const char* name, double time) override;
    int intAt(const char* name, double time) override;
    bool boolAt(const char* name, double time) override;
    Orvane::Engine::Vec2 double2DAt(const char* name, double time) override;

    bool isClipConnected(const char* name) override;
    std::unique_ptr<Orvane::Engine::ClipImage> clipImage(const char* name, double time) override;

    Orvane::Engine::RenderObserver* observer() override { return observer_.get(); }

private:
    Orvane::OvOfxHostWrapper& wrapper_;
    Orvane::OvOfxEffectInterface& interface_;
    std::unique_ptr<Orvane::Engine::RenderObserver> observer_;
};

}  // namespace Tesseret
