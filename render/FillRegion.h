#pragma once

/// The choice of the parameter "fillRegion": where the mask of what is to be filled comes from.

#include <optional>

#include "render/JobInputs.h"
#include "render/MatteValue.h"
#include "render/ParameterText.h"

namespace Tesseret::Render {

enum class MaskSource { None, Alpha, Matte };

struct FillRegion {
    MaskSource source = MaskSource::None;
    Polarity polarity = Polarity::White;
};

/// Whether the choice among the values, or its default, is what the options and files ask for.
bool allowsFillRegion(const RenderSettings& settings, const Host::ContextDescription& description,
                      const ParameterValues& values);

/// Sets the choice that the options and files ask for. Throws `UsageError` when the values have
/// another one that contradicts them, when the plug-in has no such choice, or when the source has
/// no alpha to take.
void setFillRegion(const RenderSettings& settings, const Host::ContextDescription& description,
                   const JobInputs& inputs, ParameterValues& values);

/// What the plug-in will fill from; no mask for a plug-in that has no such parameter.
FillRegion fillRegionOf(const Host::ContextDescription& description, const JobInputs& inputs,
                        const ParameterValues& values);

}  // namespace Tesseret::Render
