#pragma once

#include "products/OFX/Support/Rect.h"

namespace Orvane {

/// The unit of a parameter's value. Normalised values are fractions of the project's size; absolute
/// ones are measured from the project's offset.
enum class OvDoubleType {
    Plain = 0,
    Angle = 1,
    Scale = 2,
    Time = 3,
    AbsoluteTime = 4,
    NormalisedX = 5,
    NormalisedY = 6,
    NormalisedXAbsolute = 7,
    NormalisedYAbsolute = 8,
    NormalisedXY = 9,
    NormalisedXYAbsolute = 10
};

/// The project's rectangle in canonical units, the reference of normalised values.
struct OvProject {
    OvPoint size;
    OvPoint offset;
};

/// Converts a value of one of the types NormalisedX to NormalisedYAbsolute to canonical units and
/// back; returns values of other types unchanged.
[[nodiscard]] double normalisedToCanonical(double value, OvDoubleType type,
                                           const OvProject& project);
[[nodiscard]] double canonicalToNormalised(double value, OvDoubleType type,
                                           const OvProject& project);

/// Converts a position of one of the types NormalisedXY and NormalisedXYAbsolute to pixels and
/// back; returns positions of other types unchanged. `scale` is pixels per canonical unit.
[[nodiscard]] OvPoint normalisedToPixels(OvPoint value, OvDoubleType type, const OvProject& project,
                                         OvPoint scale);
[[nodiscard]] OvPoint pixelsToNormalised(OvPoint pixels, OvDoubleType type,
                                         const OvProject& project, OvPoint scale);

/// Converts a rectangle from pixels to canonical units: x * aspect / scale x, y / scale y.
[[nodiscard]] OvRect pixelsToCanonical(const OvRect& pixels, OvPoint renderScale, double aspect);
/// The inverse for positions and sizes: x * scale x / aspect, y * scale y.
[[nodiscard]] OvPoint canonicalToPixels(OvPoint canonical, OvPoint renderScale, double aspect);

}  // namespace Orvane
