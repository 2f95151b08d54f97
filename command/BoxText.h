#pragma once

#include <functional>
#include <optional>
#include <string>

#include "render/RenderSettings.h"

namespace Tesseret::Command {

/// The box of an option, "x1,y1,x2,y2" in pixels, or with "%" after a number in per cent of the
/// picture, rounded to whole pixels. `size` is asked for only then: the picture's display window.
/// nullopt for an empty text. Throws `UsageError`.
std::optional<Render::ViewBox> boxFrom(const std::string& text, const std::string& option,
                                       const std::function<OfxRectI()>& size);

/// A point and an angle, "x,y,angle". Likewise.
std::optional<Render::LineSide> sideFrom(const std::string& text);

}  // namespace Tesseret::Command
