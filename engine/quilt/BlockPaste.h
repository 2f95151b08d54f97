#pragma once

#include <span>
#include <vector>

#include "engine/map/MapRow.h"
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

/// Pastes rectangles of images onto another one along L-shaped seams (Efros and Freeman 2001,
/// section 2.1): the destination stays left of the vertical and below the horizontal seam. Across
/// the seams R, G and B are mixed in float and stored by truncation; alpha changes only beyond the
/// blends. A pixel of the destination depends on nothing else of it, so rows may be pasted apart.
template <typename Pixel>
class BlockPaste {
public:
    /// A rectangle and where it comes from.
    struct Block {
        Region region;
        int srcX, srcY;  ///< the position in the image of the region's first pixel
        Seams seams;

        /// The column of the image that belongs to one of the region. In this order, since the
        /// distance between the two may not fit an int.
        int sourceOf(int x) const { return srcX + (x - region.x0); }
    };

    explicit BlockPaste(const Blend& blend) : blend_(blend) {}

    /// Pastes those rows of the block's region that lie in `rows`, which must lie in the
    /// destination; and of them the columns that lie there. Far out, where floats are coarse, a
    /// recorded block may lie beside its place.
    void run(const Map<Pixel>& image, const Block& block, const RowRange& rows,
             Map<Pixel>& destination);

private:
    void resolveSeam(const Block& block);
    struct Columns {
        int begin, end;
    };

    void cutRow(const Block& block, int y, const Columns& columns, const RowReader<Pixel>& image,
                RowWriter<Pixel>& to);
    void blendRow(const Block& block, int y, const Columns& columns, const RowReader<Pixel>& image,
                  RowWriter<Pixel>& to);

    Blend blend_;
    std::vector<int> seamY_;  ///< absolute, one for each column of the region
    int lowestSeamY_ = 0;
    int highestSeamY_ = 0;  ///< rows from here on lie above the horizontal seam
};

}  // namespace Orvane::Engine
