#pragma once

#include <span>
#include <vector>

#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// The absolute coordinate of a seam of a rectangle with this corner.
int cutAt(int corner, float seam);

/// The shares of the pasted image across a blend of this half-width: `halfWidth` pixels on either
/// side of the seam.
std::vector<float> blendRamp(int halfWidth);

/// The seams of a rectangle: vertical[j].x is the seam's x in row j, horizontal[i].y its y in
/// column i, both relative to the rectangle's corner. The arrays must outlive the paste.
struct Seams {
    std::span<const PixelVec2f> horizontal;  ///< at least one entry for each column of the region
    std::span<const PixelVec2f> vertical;    ///< at least one entry for each row of the region
};

/// Half-widths, in pixels, of the linear blends across the seams: `width` across the vertical seam,
/// `height` across the horizontal one. 0 is a hard cut.
struct Blend {
    int width = 0;
    int height = 0;
};

/// Pastes a rectangle of one image onto another along an L-shaped seam (Efros and Freeman 2001,
/// section 2.1): the destination stays left of the vertical and below the horizontal seam. Set the
/// region to the rectangle; it must lie inside the destination. Across the seams R, G and B are
/// mixed in float and stored by truncation; alpha changes only beyond the blends.
template <typename Pixel>
class BlockPaste final : public Sampler<const Map<Pixel>, Map<Pixel>> {
public:
    /// The position in the image of the region's first pixel.
    void setSourcePosition(int x, int y) { srcX_ = x, srcY_ = y; }
    void setSeams(const Seams& seams) { seams_ = seams; }
    void setBlend(const Blend& blend) { blend_ = blend; }

    void begin() override;
    void processPass() override;

private:
    void cutRow(int y, int seamX);
    void blendRow(int y, int seamX);

    int srcX_ = 0, srcY_ = 0;
    Seams seams_;
    Blend blend_;
    std::vector<int> seamY_;  ///< absolute, one for each column of the region
    int highestSeamY_ = 0;    ///< rows from here on lie above the horizontal seam
};

}  // namespace Orvane::Engine
