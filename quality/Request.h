#pragma once

#include "picture/Picture.h"

namespace Tesseret::Quality {

/// Throws std::invalid_argument when a picture, its lost pixels and an area do not fit together.
void checkRequest(const Picture& source, const Picture& lost, const OfxRectI& area);

}  // namespace Tesseret::Quality
