#include "products/OFX/Support/Coordinates.h"

namespace Orvane {

double normalisedToCanonical(double value, OvDoubleType type, const OvProject& project)
{
    switch (type) {
        case OvDoubleType::NormalisedX:
            return value * project.size.x;
        case OvDoubleType::NormalisedY:
            return value * project.size.y;
        case OvDoubleType::NormalisedXAbsolute:
            return value * project.size.x + project.offset.x;
        case OvDoubleType::NormalisedYAbsolute:
            return value * project.size.y + project.offset.y;
        default:
            return value;
    }
}

double canonicalToNormalised(double value, OvDoubleType type, const OvProject& project)
{
    switch (type) {
        case OvDoubleType::NormalisedX:
            return value / project.size.x;
        case OvDoubleType::NormalisedY:
            return value / project.size.y;
        case OvDoubleType::NormalisedXAbsolute:
            return (value - project.offset.x) / project.size.x;
        case OvDoubleType::NormalisedYAbsolute:
            return (value - project.offset.y) / project.size.y;
        default:
            return value;
    }
}

OvPoint normalisedToPixels(OvPoint value, OvDoubleType type, const OvProject& project,
                           OvPoint scale)
{
    switch (type) {
        case OvDoubleType::NormalisedXY:
            return {value.x * project.size.x * scale.x, value.y * project.size.y * scale.y};
        case OvDoubleType::NormalisedXYAbsolute:
            return {(value.x * project.size.x + project.offset.x) * scale.x,
                    (value.y * project.size.y + project.offset.y) * scale.y};
        default:
            return value;
    }
}

OvPoint pixelsToNormalised(OvPoint pixels, OvDoubleType type, const OvProject& project,
                           OvPoint scale)
{
    switch (type) {
        case OvDoubleType::NormalisedXY:
            return {pixels.x / scale.x / project.size.x, pixels.y / scale.y / project.size.y};
        case OvDoubleType::NormalisedXYAbsolute:
            return {(pixels.x / scale.x - project.offset.x) / project.size.x,
                    (pixels.y / scale.y - project.offset.y) / project.size.y};
        default:
            return pixels;
    }
}

OvRect pixelsToCanonical(const OvRect& pixels, OvPoint renderScale, double aspect)
{
    const auto canonicalX = [&](float x) { return static_cast<float>(x * aspect / renderScale.x); };
    return {.xMin = canonicalX(pixels.xMin),
            .xMax = canonicalX(pixels.xMax),
            .yMin = pixels.yMin / renderScale.y,
            .yMax = pixels.yMax / renderScale.y};
}

OvPoint canonicalToPixels(OvPoint canonical, OvPoint renderScale, double aspect)
{
    return {static_cast<float>(canonical.x * renderScale.x / aspect), canonical.y * renderScale.y};
}

}  // namespace Orvane
