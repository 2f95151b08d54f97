#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Tesseret::Render {

/// The name that takes the fewest letters to change from what was typed, in whatever case; empty
/// when there are none.
std::string nearestName(std::string_view typed, const std::vector<std::string>& names);

/// Likewise, but empty when even the nearest has little in common with what was typed.
std::string likelyName(std::string_view typed, const std::vector<std::string>& names);

}  // namespace Tesseret::Render
