#include "engine/quilt/BlockGrid.h"

#include <algorithm>

namespace Orvane::Engine {
namespace {

/// The number of strides that cover a length.
int stridesIn(int length, int stride)
{
    return length / stride + (length % stride != 0 ? 1 : 0);
}

}  // namespace

BlockGrid::BlockGrid(const Region& rect, const BlockSettings& settings)
    : rect_(rect),
      settings_(settings),
      rows_(stridesIn(rect.y1 - rect.y0, settings.strideY())),
      columns_(stridesIn(rect.x1 - rect.x0, settings.strideX())),
      runLength_(columns_)
{}

BlockPlace BlockGrid::at(int row, int column) const
{
    BlockPlace place{};
    place.row = row;
    place.column = column;
    place.x = rect_.x0 + column * settings_.strideX();
    place.y = rowY(row);
    place.width = std::min(settings_.blockW, rect_.x1 - place.x);
    place.height = rowHeight(row);
    place.overlapW = column == 0 ? 0 : std::min(settings_.overlapW, place.width);
    place.overlapH = rowOverlap(row);
    return place;
}

int BlockGrid::rowY(int row) const
{
    return rect_.y0 + row * settings_.strideY();
}

int BlockGrid::rowHeight(int row) const
{
    return std::min(settings_.blockH, rect_.y1 - rowY(row));
}

int BlockGrid::rowOverlap(int row) const
{
    return row == 0 ? 0 : std::min(settings_.overlapH, rowHeight(row));
}

std::size_t BlockGrid::index(int row, int column) const
{
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
           static_cast<std::size_t>(column);
}

void BlockGrid::splitRuns(int concurrent)
{
    // With runs of n blocks, rows + (rows + columns) / n steps hold rows * columns / n runs.
    const double blocks = static_cast<double>(rows_) * columns_;
    const double length = (blocks / concurrent - columns_ - rows_) / rows_;
    runLength_ = static_cast<int>(std::clamp(length, 1.0, static_cast<double>(columns_)));
}

int BlockGrid::steps() const
{
    return rows_ == 0 ? 0 : lastStepOf(rows_ - 1) + 1;
}

int BlockGrid::openStrips() const
{
    // The strip of row `next` takes the place of the one of `row`.
    const auto mayReplace = [this](int row, int next) {
        return firstStepOf(next - 1) > lastStepOf(row) + 1;
    };
    int count = 1;
    for (int row = 1; row < rows_; ++row) {
        while (row + count < rows_ && !mayReplace(row, row + count)) ++count;
    }
    return count;
}

std::vector<BlockRun> BlockGrid::runsOf(int step) const
{
    std::vector<BlockRun> runs;
    for (int row = 0; row <= std::min(step, rows_ - 1); ++row) {
        const std::int64_t begin = std::int64_t{step - row} * runLength_ - row;
        const std::int64_t end = begin + runLength_;
        const BlockRun run{row, static_cast<int>(std::clamp<std::int64_t>(begin, 0, columns_)),
                           static_cast<int>(std::clamp<std::int64_t>(end, 0, columns_))};
        if (run.begin < run.end) runs.push_back(run);
    }
    return runs;
}

}  // namespace Orvane::Engine
