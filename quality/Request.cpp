#include "quality/Request.h"

#include <stdexcept>

namespace Tesseret::Quality {

void checkRequest(const Picture& source, const Picture& lost, const OfxRectI& area)
{
    const OfxRectI a = source.bounds(), b = lost.bounds();
    if (a.x1 != b.x1 || a.y1 != b.y1 || a.x2 != b.x2 || a.y2 != b.y2) {
        throw std::invalid_argument("the lost pixels have other bounds than the source");
    }
    if (lost.depth() != Depth::Byte || lost.components() != Components::Alpha) {
        throw std::invalid_argument("the lost pixels are not one channel of bytes");
    }
    if (isEmpty(intersection(area, a))) {
        throw std::invalid_argument("the area lies outside of the source");
    }
}

}  // namespace Tesseret::Quality
