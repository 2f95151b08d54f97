#pragma once

#include <memory>
#include <string>

#include "effect/EffectTable.h"
#include "engine/TemporalState.h"
#include "products/OFX/Support/Effect.h"
#include "products/OFX/Support/Page.h"
#include "products/OFX/Support/ParamTypes.h"

namespace Tesseret {

/// The effect: its description, made from the tables, and the state of an instance, the blocks
/// recorded by the last fresh render.
class TesseretEffect final : public Orvane::OvOfxEffect {
public:
    static constexpr int kCode = 64;

    TesseretEffect();

    // Virtual operations, in slot order.
    [[nodiscard]] int typeCode() const override { return kCode; }
    [[nodiscard]] bool isA(int code) const override
    {
        return code == kCode || OvOfxEffect::isA(code);
    }
    std::unique_ptr<Orvane::OvOfxEffectInterface> makeInterface(
        Orvane::OvOfxHostWrapper& wrapper) override;
    void instanceCreated() override;
    std::string aboutText() override;
    /// Renders RGBA of the three depths; any other output stays unchanged.
    void render(Orvane::OvOfxHostWrapper& wrapper, Orvane::OvComponents components,
                Orvane::OvDepth depth) override;

private:
    void fillDescriptor();
    void addClips();
    void addParameters();
    void addPages();
    Orvane::OvOfxParam& makeParameter(const ParamRow& row);
    Orvane::OvOfxPage& makePage(const PageRow& row, const Orvane::OvOfxContextContainer& container);
    Orvane::OvOfxContextContainer& filter() { return *container(Orvane::OvContext::Filter); }
    Orvane::OvOfxContextContainer& general() { return *container(Orvane::OvContext::General); }

    /// Makes the host render frames in order while blocks are kept from frame to frame.
    void writeSequentialRender() const;
    void showAbout(const Orvane::OvOfxChangeRecord& change);

    Orvane::Rect2D& sampleRegion_;
    const Orvane::OvOfxBooleanParam* temporalConsistency_ = nullptr;
    Orvane::Engine::TemporalState temporalState_;
    bool exclusionReported_ = false;  ///< see EffectRenderContext
};

}  // namespace Tesseret
