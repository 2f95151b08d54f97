#include "files/ConvertedPicture.h"

namespace Tesseret::Files {

const Picture& converted(const Picture& picture, OfxRectI window, Depth depth, Picture& storage)
{
    const OfxRectI a = picture.bounds();
    const OfxRectI& b = window;
    const Picture* result = &picture;
    if (a.x1 != b.x1 || a.y1 != b.y1 || a.x2 != b.x2 || a.y2 != b.y2) {
        storage = picture.copied(window, {});
        result = &storage;
    }
    if (depth != picture.depth()) {
        storage = result->converted(depth, Components::RGBA);
        result = &storage;
    }
    return *result;
}

}  // namespace Tesseret::Files
