#pragma once

#include <array>
#include <vector>

#include "viewer/model/MattePaint.h"

namespace Tesseret::Viewer {

/// The edges between masked and unmasked pixels, as straight lines along their sides. Masked is
/// what a fill counts as masked, soft rims included. Kept by tiles, so that a stroke costs what it
/// touches.
class MatteOutline {
public:
    struct Line {
        OfxPointI from, to;  ///< corners of pixels, the lower or left end first
        bool operator==(const Line& other) const
        {
            return from.x == other.from.x && from.y == other.from.y && to.x == other.to.x &&
                   to.y == other.to.y;
        }
    };

    /// Follows the pixels that changed in a box; the first call takes the whole picture.
    void update(const Picture& matte, const OfxRectI& box);
    /// In no particular order; a line ends at the border of a tile.
    template <typename Use>
    void forEach(const Use& use) const
    {
        for (const std::vector<Line>& tile : tiles_) {
            for (const Line& line : tile) use(line);
        }
    }

private:
    void trace(const Picture& matte, int column, int row);

    int columns_ = 0, rows_ = 0;
    std::vector<std::vector<Line>> tiles_;
};

}  // namespace Tesseret::Viewer
