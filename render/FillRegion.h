#pragma once

/// The choice of the parameter "fillRegion": where the mask of the region to fill comes from.

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

/// Whether the choice among the values, or its default, agrees with the options and files.
bool allowsFillRegion(const RenderSettings& settings, const Host::ContextDescription& description,
                      const ParameterValues& values);

/// Sets the choice that the options and files request. Throws `UsageError` when the values
/// contradict them, when the plug-in has no such choice, or when a required source alpha is
/// missing.
void setFillRegion(const RenderSettings& settings, const Host::ContextDescription& description,
                   const JobInputs& inputs, ParameterValues& values);

/// The mask that the plug-in fills from; none for a plug-in that has no such parameter.
FillRegion fillRegionOf(const Host::ContextDescription& description, const JobInputs& inputs,
                        const ParameterValues& values);

}  // namespace Tesseret::Render
