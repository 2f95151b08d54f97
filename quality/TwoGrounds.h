#pragma once

namespace Tesseret::Quality {

/// Two grounds that meet at an area, such as sea and sand, and the straight line between them: a
/// pixel belongs to the second when normalX * x + normalY * y is larger than `offset`.
struct TwoGrounds {
    double normalX = 0, normalY = 0;  ///< of length 1
    double offset = 0;                ///< in pixels, in the source's coordinates
    double mistaken = 0;  ///< share of the surroundings that lies on the other ground's side
    double apart = 0;     ///< how much they differ, in spreads of one ground

    /// How far a point lies on the second ground's side; negative on the first's.
    double height(double x, double y) const { return normalX * x + normalY * y - offset; }
};

}  // namespace Tesseret::Quality
