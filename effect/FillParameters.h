#pragma once

#include <cstddef>

#include "engine/FillParameters.h"
#include "products/OFX/Support/EffectInterface.h"
#include "products/OFX/Support/HostWrapper.h"

namespace Tesseret {

/// Reads the settings of a render from the parameters. Hosts see each read, so the reads come in
/// the order of the functions, and each value is read once.
class FillParameterReader {
public:
    /// Both outlive the reader. Parameter times are single precision, whatever the host's are.
    FillParameterReader(const Orvane::OvOfxHostWrapper& wrapper,
                        Orvane::OvOfxEffectInterface& effectInterface, double time);

    /// Reads the factors that convert lengths at full size to pixels of the render.
    void readScale();
    /// Reads whether blocks are reused and where the mask comes from.
    void readRegion(Orvane::Engine::FillParameters& fill);
    /// Reads everything else but the textures.
    void readFill(Orvane::Engine::FillParameters& fill);
    /// Whether the context has texture 0, 1 or 2.
    [[nodiscard]] bool hasTexture(std::size_t index) const;
    /// Reads whether that texture is switched on.
    [[nodiscard]] bool usesTexture(std::size_t index);

private:
    int scaledInt(const char* name);
    float lengthAt(const char* name);
    Orvane::Engine::Region sampleBox();

    const Orvane::OvOfxHostWrapper& wrapper_;
    Orvane::OvOfxEffectInterface& interface_;
    float time_;
    float scaleX_ = 1.0f;
    double pixelAspectRatio_ = 1.0;
};

}  // namespace Tesseret
