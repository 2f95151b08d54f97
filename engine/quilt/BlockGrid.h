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

/// The position of a block, clipped at the fill rectangle's edge, and its overlap with the block to
/// its left and with the row below.
struct BlockPlace {
    int row, column;
    int x, y, width, height;
    int overlapW, overlapH;  ///< 0 in the first column and in the first row, respectively

    bool firstInRow() const { return column == 0; }
    bool firstRow() const { return row == 0; }
};

/// Consecutive blocks of one row.
struct BlockRun {
    int row, begin, end;  ///< columns; end is exclusive
};

/// The blocks of a fill rectangle, in rows from the corner with the smallest x and y, and their
/// schedule for several threads.
///
/// A block depends on the one before it in its row, and on those of the row below that it overlaps:
/// up to the next column. So the blocks on a diagonal of the grid are independent of each other.
/// Rows are split into runs along such diagonals, and the runs are grouped into steps: all runs of
/// a step can run concurrently once the steps before it are done.
class BlockGrid {
public:
    BlockGrid() = default;
    /// Needs clamped sizes and a rectangle that is not empty.
    BlockGrid(const Region& rect, const BlockSettings& settings);

    int rows() const { return rows_; }
    int columns() const { return columns_; }
    BlockPlace at(int row, int column) const;
    /// The y of a row's blocks, and their height.
    int rowY(int row) const;
    int rowHeight(int row) const;
    /// The height of the strip in which a row overlaps the one below; 0 for the first row.
    int rowOverlap(int row) const;
    std::size_t index(int row, int column) const;

    /// Splits rows into runs, about `concurrent` of them in a step.
    void splitRuns(int concurrent);
    int steps() const;
    std::vector<BlockRun> runsOf(int step) const;
    /// The step that places the last block of a row.
    int lastStepOf(int row) const { return row + (columns_ - 1 + row) / runLength_; }
    /// How many strips between rows are in use at once, at least 1: from the first block of the row
    /// below until the step after the one that places the last block of the row.
    int openStrips() const;

private:
    int firstStepOf(int row) const { return row + row / runLength_; }

    Region rect_;
    BlockSettings settings_;
    int rows_ = 0, columns_ = 0;
    int runLength_ = 1;
};

}  // namespace Orvane::Engine
