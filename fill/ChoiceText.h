#pragma once

/// What was chosen, in words for the user.

#include <string>

#include "fill/FillPlan.h"

namespace Tesseret::Fill {

/// With two digits after the point.
std::string scoreText(double score);
/// "area 2" or "12 small areas".
std::string areasText(const AreaChoice& choice);
/// A note where even the best fill is visible, with what might help; empty where it is not.
std::string poorNote(const AreaChoice& choice);

}  // namespace Tesseret::Fill
