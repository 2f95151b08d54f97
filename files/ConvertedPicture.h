#pragma once

#include "picture/Picture.h"

namespace Tesseret::Files {

/// A picture at the depth and with the bounds of a file: the picture itself where it has them, else
/// a copy in `storage`.
const Picture& converted(const Picture& picture, OfxRectI window, Depth depth, Picture& storage);

}  // namespace Tesseret::Files
