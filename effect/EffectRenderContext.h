#pragma once

#include <cstddef>
#include <memory>
#include <optional>

#include "effect/FillParameters.h"
#include "engine/RenderContext.h"
#include "products/OFX/Support/EffectInterface.h"
#include "products/OFX/Support/HostWrapper.h"

namespace Tesseret {

/// The engine's context of one render action, over the action's host wrapper and the effect's
/// interface.
class EffectRenderContext final : public Orvane::Engine::RenderContext {
public:
    /// All outlive the context. Asks the host for an observer, for records where it
    /// has one, then for the time of the render.
    /// `exclusionReported` belongs to the instance: whether its user was told once that nothing is
    /// rendered outside a clip's frame range.
    EffectRenderContext(Orvane::OvOfxHostWrapper& wrapper,
                        Orvane::OvOfxEffectInterface& effectInterface, bool& exclusionReported);

    std::unique_ptr<Orvane::Engine::ClipImage> outputImage() override;
    Orvane::Engine::RenderPlace place() override;
    std::unique_ptr<Orvane::Engine::ClipImage> sourceImage() override;
    void readRegion(Orvane::Engine::FillParameters& fill) override { reader_.readRegion(fill); }
    std::unique_ptr<Orvane::Engine::ClipImage> matteImage() override;
    void readFill(Orvane::Engine::FillParameters& fill) override { reader_.readFill(fill); }
    std::unique_ptr<Orvane::Engine::ClipImage> textureImage(std::size_t index) override;

    Orvane::RenderStatus& renderStatus() override { return wrapper_.renderStatus(); }
    Orvane::Engine::RenderObserver* observer() override { return observer_.get(); }
    Orvane::Engine::RecordExchange* records() override { return records_.get(); }

private:
    [[nodiscard]] bool isConnected(const char* clip) const;
    [[nodiscard]] std::unique_ptr<Orvane::Engine::ClipImage> image(
        const char* clip, std::optional<double>* aspect = nullptr) const;
    /// Tells the user when a clip without which nothing is rendered has no image because of its
    /// frame range.
    void reportExclusion(const char* clip);

    Orvane::OvOfxHostWrapper& wrapper_;
    bool& exclusionReported_;
    std::unique_ptr<Orvane::Engine::RenderObserver> observer_;
    std::unique_ptr<Orvane::Engine::RecordExchange> records_;
    double time_;
    FillParameterReader reader_;
};

}  // namespace Tesseret
