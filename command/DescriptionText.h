#pragma once

#include <string>
#include <vector>

#include "host/Descriptor.h"

namespace Tesseret::Command {

/// What a plug-in described, for people.
std::string descriptionText(const Host::EffectDescription& effect,
                            const std::vector<Host::ContextDescription>& contexts);

/// The same for programs.
std::string descriptionJson(const Host::EffectDescription& effect,
                            const std::vector<Host::ContextDescription>& contexts);

}  // namespace Tesseret::Command
