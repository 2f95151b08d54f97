#pragma once

#include "host/Descriptor.h"

namespace Tesseret::Viewer {

/// Draws the field or fields that a parameter is edited with, `width` screen units wide, and
/// changes the value to what the person makes of it; numbers stay in the whole range described.
/// Returns whether it changed. A push button has no value: true says that it was pressed.
bool drawParameter(const Host::ParameterDescription& parameter, Host::ParameterValue& value,
                   float width);

}  // namespace Tesseret::Viewer
