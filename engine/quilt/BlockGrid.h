#pragma once

#include <vector>

#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// Sizes in pixels; quilting clamps them to each other.
struct BlockSettings {
    int blockW = 1, blockH = 1;
    int overlapW = 0, overlapH = 0;
    int blendW = 0, blendH = 0;
    int seamStep = 2;    ///< largest step of a seam between neighbouring rows or columns
    int numSamples = 1;  ///< candidates for each texture and block; fewer than 1 counts as 1

    int strideX() const { return blockW - overlapW; }
    int strideY() const { return blockH - overlapH; }
};

/// Where a block lies, clipped at the fill rectangle's edge, and how much of it the block to its
/// left and the row below lie under.
struct BlockPlace {
    int row, column;
    int x, y, width, height;
    int overlapW, overlapH;  ///< 0 for the first of a row, and in the first row

    bool firstInRow() const { return column == 0; }
    bool firstRow() const { return row == 0; }
};

/// A run of blocks of one row.
struct BlockRun {
    int row, begin, end;  ///< columns; end is exclusive
};

/// The blocks of a fill rectangle, in rows from the corner with the smallest x and y, and the order
/// in which they can be worked side by side.
///
/// A block depends on the one before it in its row, and on those of the row below that it overlaps:
/// up to the one that is a column further on. So blocks that lie on one diagonal of the grid depend
/// on nothing of each other. Rows are cut into runs along such diagonals, and the runs into steps:
/// all runs of a step can be worked at once when the steps before it are done.
class BlockGrid {
public:
    BlockGrid() = default;
    /// For clamped sizes and a rectangle that is not empty.
    BlockGrid(const Region& rect, const BlockSettings& settings);

    int rows() const { return rows_; }
    int columns() const { return columns_; }
    BlockPlace at(int row, int column) const;
    /// Of the blocks of a row, pixels.
    int rowY(int row) const;
    int rowHeight(int row) const;
    /// Of the strip in which a row is joined to the one below; 0 for the first row.
    int rowOverlap(int row) const;
    std::size_t index(int row, int column) const;

    /// Cuts rows into runs so that about `sideBySide` of them stand in a step.
    void cutRuns(int sideBySide);
    int steps() const;
    std::vector<BlockRun> runsOf(int step) const;
    /// The step that works the last block of a row.
    int lastStepOf(int row) const { return row + (columns_ - 1 + row) / runLength_; }

private:
    Region rect_;
    BlockSettings settings_;
    int rows_ = 0, columns_ = 0;
    int runLength_ = 1;
};

}  // namespace Orvane::Engine
