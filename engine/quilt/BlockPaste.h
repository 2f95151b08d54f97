#pragma once

#include <span>
#include <vector>

#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// The absolute coordinate at which a rectangle with this corner is cut by a seam.
int cutAt(int corner, float seam);

/// The shares of the pasted image across a blend band of this half-width, from the first pixel
/// before the seam to the last one behind it.
std::vector<float> blendRamp(int halfWidth);

/// Where a rectangle is cut: vertical[j].x is the seam's x in row j, horizontal[i].y its y in
/// column i, both relative to the rectangle's corner. The arrays must outlive the paste.
struct Seams {
    std::span<const PixelVec2f> horizontal;  ///< at least one entry for each column of the region
    std::span<const PixelVec2f> vertical;    ///< at least one entry for each row of the region
};

/// Half-widths, in pixels, of the bands in which a paste rises linearly across its seams: `width`
/// across the vertical seam, `height` across the horizontal one. 0 is a hard cut.
struct Blend {
    int width = 0;
    int height = 0;
};

/// Lays a rectangle of one image onto another along an L-shaped seam (Efros and Freeman 2001,
/// section 2.1): the destination stays before the vertical and below the horizontal seam. Set the
/// region to the rectangle; it must lie inside the destination. Across the bands R, G and B are
/// mixed in float and stored by truncation; alpha changes only where the image is taken whole.
template <typename Pixel>
class BlockPaste final : public Sampler<const Map<Pixel>, Map<Pixel>> {
public:
    /// Where the region's first pixel is taken from.
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
    int highestSeamY_ = 0;    ///< rows from here on need no test against the horizontal seam
};

}  // namespace Orvane::Engine
