#pragma once

#include "files/PictureReader.h"

namespace Tesseret::Render {

/// Corners of a box as an image viewer shows them: pixels from the upper left corner of the display
/// window, y downwards.
struct ViewBox {
    double x1, y1, x2, y2;
};

/// The box in the pixels of a picture, y upwards; whole pixels that cover it, cut at the data
/// window. Throws `UsageError` when nothing is left.
OfxRectI boxInPicture(const ViewBox& box, const Files::PictureInfo& picture);

}  // namespace Tesseret::Render
