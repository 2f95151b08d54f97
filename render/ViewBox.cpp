#include "render/ViewBox.h"

#include "render/JobError.h"
#include "render/ParameterText.h"

namespace Tesseret::Render {

OfxRectI boxInPicture(const ViewBox& box, const Files::PictureInfo& picture)
{
    const double top = picture.displayWindow.y2;
    const OfxRectI asked = toPixels({box.x1, top - box.y2, box.x2, top - box.y1}, {1.0, 1.0}, 1.0);
    const OfxRectI inside = intersection(asked, picture.dataWindow);
    if (!isEmpty(inside)) return inside;
    throw UsageError("the box " + numberText(box.x1) + "," + numberText(box.y1) + "," +
                     numberText(box.x2) + "," + numberText(box.y2) + " lies outside " +
                     picture.file.string() + ", which has " +
                     std::to_string(picture.displayWindow.x2) + " x " +
                     std::to_string(picture.displayWindow.y2) + " pixels");
}

}  // namespace Tesseret::Render
