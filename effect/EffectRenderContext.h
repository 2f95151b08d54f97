#pragma once

#include <cstddef>
#include <memory>

#include "effect/FillParameters.h"
#include "engine/RenderContext.h"
#include "products/OFX/Support/EffectInterface.h"
#include "products/OFX/Support/HostWrapper.h"

namespace Tesseret {

/// The engine's context of one render action, over the action's host wrapper and the effect's
/// interface.
class EffectRenderContext final : public Orvane::Engine::RenderContext {
public:
    /// Both outlive the context. Asks the host for an observer, then for the time of the render.
    EffectRenderContext(Orvane::OvOfxHostWrapper& wrapper,
                        Orvane::OvOfxEffectInterface& effectInterface);

    std::unique_ptr<Orvane::Engine::ClipImage> outputImage() override;
    Orvane::Engine::RenderPlace place() override;
    std::unique_ptr<Orvane::Engine::ClipImage> sourceImage() override;
    void readRegion(Orvane::Engine::FillParameters& fill) override { reader_.readRegion(fill); }
    std::unique_ptr<Orvane::Engine::ClipImage> matteImage() override;
    void readFill(Orvane::Engine::FillParameters& fill) override { reader_.readFill(fill); }
    std::unique_ptr<Orvane::Engine::ClipImage> textureImage(std::size_t index) override;

    Orvane::RenderStatus& renderStatus() override { return wrapper_.renderStatus(); }
    Orvane::Engine::RenderObserver* observer() override { return observer_.get(); }

private:
    [[nodiscard]] bool isConnected(const char* clip) const;
    [[nodiscard]] std::unique_ptr<Orvane::Engine::ClipImage> image(const char* clip) const;

    Orvane::OvOfxHostWrapper& wrapper_;
    std::unique_ptr<Orvane::Engine::RenderObserver> observer_;
    double time_;
    FillParameterReader reader_;
};

}  // namespace Tesseret
