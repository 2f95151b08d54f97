#pragma once

#include "products/OFX/Support/Rect.h"

namespace Orvane {

/// What the number of a parameter means. Normalised values are parts of the project's size;
/// absolute ones are measured from the project's offset.
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

/// The project's rectangle in canonical units, which normalised values are parts of.
struct OvProject {
    OvPoint size;
    OvPoint offset;
};

/// A value of one of the types NormalisedX to NormalisedYAbsolute in canonical units and back;
/// other types stay as they are.
[[nodiscard]] double normalisedToCanonical(double value, OvDoubleType type,
                                           const OvProject& project);
[[nodiscard]] double canonicalToNormalised(double value, OvDoubleType type,
                                           const OvProject& project);

/// A position of one of the types NormalisedXY and NormalisedXYAbsolute in pixels and back; other
/// types stay as they are. `scale` is pixels per canonical unit.
[[nodiscard]] OvPoint normalisedToPixels(OvPoint value, OvDoubleType type, const OvProject& project,
                                         OvPoint scale);
[[nodiscard]] OvPoint pixelsToNormalised(OvPoint pixels, OvDoubleType type,
                                         const OvProject& project, OvPoint scale);

/// A rectangle in pixels in canonical units: x * aspect / scale x, y / scale y.
[[nodiscard]] OvRect pixelsToCanonical(const OvRect& pixels, OvPoint renderScale, double aspect);
/// The inverse for positions and sizes: x * scale x / aspect, y * scale y.
[[nodiscard]] OvPoint canonicalToPixels(OvPoint canonical, OvPoint renderScale, double aspect);

}  // namespace Orvane
