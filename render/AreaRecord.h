#pragma once

/// The areas that an instance recorded blocks for, and where they have gone since.

#include <vector>

#include "render/MatteAreas.h"

namespace Tesseret::Render {

struct PixelMotion {
    int x = 0, y = 0;
    bool operator==(const PixelMotion&) const = default;
};

/// One area of a matte.
struct RecordedArea {
    OfxRectI box;              ///< the smallest round it
    std::vector<bool> masked;  ///< for each pixel of the box, row by row from the lowest
    double middleX = 0.0, middleY = 0.0;

    bool has(int x, int y) const;
};

class AreaRecord {
public:
    AreaRecord() = default;
    /// As after `begin`.
    explicit AreaRecord(std::vector<RecordedArea> areas);

    bool isEmpty() const { return areas_.empty(); }
    const std::vector<RecordedArea>& areas() const { return areas_; }
    /// Records the first `count` areas of a frame's matte.
    void begin(const MatteAreas& areas, std::size_t count);
    /// Whether these can be the recorded areas: there are as many, and each overlaps the place of
    /// its own; in a picture that moves (`follows`), the place in the frame before.
    bool matches(const MatteAreas& areas, std::size_t count, bool follows) const;
    /// A later frame; matches.
    void advance(const MatteAreas& areas, std::size_t count);

    /// From where the area was recorded to where it is, in whole pixels: that of its middle.
    PixelMotion motion(const MatteAreas& areas, std::size_t area) const;
    /// Whether the recorded area, moved, has all pixels that the area has now.
    bool covers(const MatteAreas& areas, std::size_t area, PixelMotion moved) const;
    const OfxRectI& box(std::size_t area) const { return areas_[area].box; }

private:
    std::vector<RecordedArea> areas_;
    std::vector<OfxRectI> last_;  ///< their boxes in the frame before
};

OfxRectI movedBox(const OfxRectI& box, PixelMotion motion);

}  // namespace Tesseret::Render
