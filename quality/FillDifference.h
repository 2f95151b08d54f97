#pragma once

/// How much two fills of an area differ for the eye.

#include "quality/Tones.h"

namespace Tesseret::Quality {

/// Compares fills of one area by the share of its pixels that look different. Means of 5 x 5 pixels
/// are compared, so neither grain nor a soft seam counts; the same texture at another place does.
class FillDifference {
public:
    /// `source` and `lost`: as for `FillScorer`. `area`: Components::Alpha, Byte, inside the
    /// source's bounds; pixels that are not 0 count.
    FillDifference(const Picture& source, const Picture& lost, Picture area);

    /// What is compared of a fill, for the bounds of the area. `filled`: depth and components of
    /// the source, and bounds round the area's.
    Tones look(const Picture& filled) const;

    /// Of two looks: the share of the area's pixels with a clearly different tone, 0 to 1.
    double between(const Tones& a, const Tones& b) const;

private:
    ToneCurve curve_;
    Picture area_;
};

/// From this share on two fills are two pictures: with the same blocks joined in another way less
/// differs, with other blocks more; docs/quality.md.
inline constexpr double kOtherPicture = 0.3;

}  // namespace Tesseret::Quality
