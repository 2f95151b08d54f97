#pragma once

#include <vector>

#include "render/MatteAreas.h"
#include "render/RenderSettings.h"

namespace Tesseret::Render {

/// A matte with only these of its areas (all when there are none) and only the part of them on one
/// side of a line, over the box round the areas. `top` is the upper edge of the display window.
Picture partOfMatte(const MatteAreas& painted, Polarity polarity,
                    const std::vector<std::size_t>& areas, const std::optional<LineSide>& side,
                    int top);

}  // namespace Tesseret::Render
