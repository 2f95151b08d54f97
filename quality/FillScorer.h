#pragma once

/// How visible a fill is.

#include <memory>
#include <optional>

#include "picture/Picture.h"
#include "quality/TwoGrounds.h"

namespace Tesseret::Quality {

/// Each part is about 1 for a region of the picture that nobody touched; larger is more visible.
/// docs/quality.md says what each part measures and where it errs.
struct Visibility {
    double rim = 1;        ///< patches across the border that look like nothing in the picture
    double inside = 1;     ///< such patches within
    double step = 1;       ///< steps in brightness or colour, at the border and within
    double repeats = 1;    ///< the same striking thing again
    double sides = 1;      ///< ground on the wrong side of the line between two
    double structure = 1;  ///< large patches that look like nothing in the picture; blur
    double total = 1;
};

/// Scores fills of one area of a picture. Looks at what the fill changed, or could have changed,
/// and compares its patches with those of the known pixels, and that with how known squares near
/// by compare. Changes more than 96 pixels outside of the area are not seen. Takes about 20 bytes
/// for each pixel of the source.
class FillScorer {
public:
    /// `source`: the picture with the thing still in it, or its surroundings, cropped. `lost`: as
    /// large as the source, Components::Alpha, Byte; not 0 where anything is to be removed, by this
    /// area or another: never a reference. `area`: bounds of the area to judge, in the same
    /// coordinates. `grounds`: the two that meet there, if known. Throws std::invalid_argument when
    /// the pictures do not fit together.
    FillScorer(const Picture& source, const Picture& lost, OfxRectI area,
               const std::optional<TwoGrounds>& grounds = std::nullopt);
    ~FillScorer();
    FillScorer(FillScorer&&) noexcept;
    FillScorer& operator=(FillScorer&&) noexcept;

    /// `filled`: bounds, depth and components of the source. May be called from several threads at
    /// once; gives the same result on every machine. Throws std::invalid_argument when the picture
    /// does not fit.
    Visibility score(const Picture& filled) const;

private:
    class Judge;
    std::unique_ptr<const Judge> judge_;
};

}  // namespace Tesseret::Quality
