#pragma once

#include <string>
#include <vector>

#include "host/Descriptor.h"

namespace Tesseret::Command {

/// The description of a plug-in as text for the user.
std::string descriptionText(const Host::EffectDescription& effect,
                            const std::vector<Host::ContextDescription>& contexts);

/// The same as JSON, for programs.
std::string descriptionJson(const Host::EffectDescription& effect,
                            const std::vector<Host::ContextDescription>& contexts);

}  // namespace Tesseret::Command
