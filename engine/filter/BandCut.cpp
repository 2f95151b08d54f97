#include "engine/filter/BandCut.h"

#include "engine/map/MapRow.h"

namespace Orvane::Engine {

void BandCut::processPass()
{
    const auto [yBegin, yEnd] = threadRows();
    for (int y = yBegin; y < yEnd; ++y) {
        const RowReader fillMask(other(), y);
        RowWriter band(target(), y);
        for (int x = region().x0; x < region().x1; ++x) {
            const bool kept = fillMask[x] == 0.0f && band[x] >= weakestKept_;
            if (!kept) band[x] = 0.0f;
        }
    }
}

}  // namespace Orvane::Engine
