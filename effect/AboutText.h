#pragma once

#include <string>

#include "products/OFX/Support/Effect.h"

namespace Tesseret {

/// The text of the help button: label, grouping and versions, description. At most 1023 characters.
[[nodiscard]] std::string makeAboutText(const Orvane::OvEffectDescriptor& descriptor);

}  // namespace Tesseret
