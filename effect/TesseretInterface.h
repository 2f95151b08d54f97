#pragma once

#include "engine/TemporalState.h"
#include "products/OFX/Support/EffectInterface.h"

namespace Tesseret {

/// The effect's answers to what hosts ask. Everything not answered here is left to the host.
class TesseretInterface final : public Orvane::OvOfxEffectInterface {
public:
    TesseretInterface(Orvane::OvOfxHostWrapper& wrapper, Orvane::Engine::TemporalState& state)
        : OvOfxEffectInterface(wrapper), state_(state)
    {}

    /// The whole picture: blocks may come from anywhere, whatever part of the output is wanted.
    bool getRegionOfInterest(const char* clipName, const Orvane::OvRect& outputRegion,
                             Orvane::OvRect& rect) override;
    /// Forgets the recorded blocks.
    void purgeCaches() override;

private:
    Orvane::Engine::TemporalState& state_;
};

}  // namespace Tesseret
