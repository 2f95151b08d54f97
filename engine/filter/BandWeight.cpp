#include "engine/filter/BandWeight.h"

#include <algorithm>

#include "engine/map/MapRow.h"

namespace Orvane::Engine {

void BandWeight::processPass()
{
    const auto [yBegin, yEnd] = threadRows();
    for (int y = yBegin; y < yEnd; ++y) {
        const RowReader band(other(), y);
        RowWriter weight(target(), y);
        for (int x = region().x0; x < region().x1; ++x) {
            // exact: one float product with the float nearest 1/M. The comparison sends NaN to 0.
            const float scaled = band[x] * scale_;
            weight[x] = scaled > 0.0f ? std::min(scaled, 1.0f) : 0.0f;
        }
    }
}

}  // namespace Orvane::Engine
