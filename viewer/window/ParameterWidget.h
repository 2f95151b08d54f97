#pragma once

#include "host/Descriptor.h"

namespace Tesseret::Viewer {

/// Draws the fields to edit a parameter, `width` screen units wide, and sets the value to the
/// user's input; numbers are clamped to the described range. Returns whether the value changed, or
/// for a push button whether it was pressed.
bool drawParameter(const Host::ParameterDescription& parameter, Host::ParameterValue& value,
                   float width);

/// A whole number without a slider.
bool drawWholeField(const Host::ParameterDescription& parameter, int& value, float width);

}  // namespace Tesseret::Viewer
