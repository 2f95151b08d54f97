#pragma once

#include "engine/TemporalState.h"
#include "products/OFX/Support/EffectInterface.h"

namespace Tesseret {

/// Handles the host's queries. Queries without an override are left to the host.
class TesseretInterface final : public Orvane::OvOfxEffectInterface {
public:
    TesseretInterface(Orvane::OvOfxHostWrapper& wrapper, Orvane::Engine::TemporalState& state)
        : OvOfxEffectInterface(wrapper), state_(state)
    {}

    /// The whole image: blocks may come from anywhere, whatever part of the output is rendered.
    bool getRegionOfInterest(const char* clipName, const Orvane::OvRect& outputRegion,
                             Orvane::OvRect& rect) override;
    /// Forgets the recorded blocks.
    void purgeCaches() override;

private:
    Orvane::Engine::TemporalState& state_;
};

}  // namespace Tesseret
