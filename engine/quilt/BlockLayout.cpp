#include "engine/quilt/BlockLayout.h"

#include <algorithm>

#include "engine/filter/FillAndCopy.h"
#include "engine/map/ExactMath.h"
#include "engine/map/MapRow.h"
#include "engine/quilt/BlockPaste.h"

namespace Orvane::Engine {
namespace {

/// Writes a block's number to the pixels inside its two seams.
void writeNumber(const BlockRecord& record, const Region& region, float number,
                 Map<Pixel32f>& numbers)
{
    for (int y = region.y0; y < region.y1; ++y) {
        const float seamX = record.seamV[static_cast<std::size_t>(y - region.y0)].x;
        RowWriter row(numbers, y);
        for (int x = std::max(region.x0, cutAt(region.x0, seamX)); x < region.x1; ++x) {
            const auto column = static_cast<std::size_t>(x - region.x0);
            const float seamY = record.seamH.empty() ? 0.0f : record.seamH[column].y;
            if (y >= cutAt(region.y0, seamY)) row[x] = number;
        }
    }
}

}  // namespace

Region placedRegion(const BlockRecord& record, const BlockSize& size, const Region& limit)
{
    const int x0 = truncateToInt(record.x);
    const int y0 = truncateToInt(record.y);
    // The seams keep the size that the block had when it was recorded; a window that has grown
    // since does not enlarge it.
    const int blockW = truncateToInt(size.width);
    const int rows = static_cast<int>(record.seamV.size());
    const int columns = record.seamH.empty() ? blockW : static_cast<int>(record.seamH.size());
    return {x0, y0, std::min({x0 + blockW, x0 + columns, limit.x1}),
            std::min({y0 + truncateToInt(size.height), y0 + rows, limit.y1})};
}

bool isPlaced(const BlockRecord& record, const Region& region, std::size_t textureCount)
{
    return static_cast<std::size_t>(record.textureIndex) < textureCount && !region.isEmpty();
}

Map<Pixel32f> numberBlocks(const TemporalState& state, std::size_t textureCount,
                           const Region& limit)
{
    const Region& bounds = state.fillBounds;
    Map<Pixel32f> numbers;
    numbers.setSize(bounds.x1 - bounds.x0, bounds.y1 - bounds.y0);
    numbers.placeAt(bounds.x0, bounds.y0);
    numbers.allocate();
    if (!numbers.isUsable()) return numbers;
    ConstantFill<Pixel32f>(0.0f).process(&numbers);
    const Region inside{limit.x0, limit.y0, std::min(limit.x1, bounds.x1),
                        std::min(limit.y1, bounds.y1)};
    int number = 0;
    for (const BlockRecord& record : state.blockList) {
        ++number;
        const Region region = placedRegion(record, state.savedBlockSize, inside);
        if (!isPlaced(record, region, textureCount)) continue;
        writeNumber(record, region, static_cast<float>(number), numbers);
    }
    return numbers;
}

}  // namespace Orvane::Engine
