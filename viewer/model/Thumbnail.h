#pragma once

#include "picture/Picture.h"

namespace Tesseret::Viewer {

/// The part of a picture round a box, with some of its surroundings, made smaller where it is
/// larger than a thumbnail needs. `aspect` is the width of what is wanted for one height.
Picture thumbnailOf(const Picture& picture, const OfxRectI& box, double aspect);

}  // namespace Tesseret::Viewer
