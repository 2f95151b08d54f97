#include "engine/filter/BandNodes.h"

#include <algorithm>

#include "engine/map/MapRow.h"

namespace Orvane::Engine {

void MaskGradient::processPass()
{
    const auto [yBegin, yEnd] = threadRows();
    for (int y = yBegin; y < yEnd; ++y) {
        const RowReader mask(other(), y);
        const RowReader next(other(), y + 1);
        RowWriter gradient(target(), y);
        Pixel32f here = mask[region().x0];
        for (int x = region().x0; x < region().x1; ++x) {
            const Pixel32f right = mask[x + 1];
            gradient[x] = {right - here, next[x] - here};
            here = right;
        }
    }
}

void BandCut::processPass()
{
    const auto [yBegin, yEnd] = threadRows();
    for (int y = yBegin; y < yEnd; ++y) {
        const RowReader fillMask(other(), y);
        RowWriter band(target(), y);
        for (int x = region().x0; x < region().x1; ++x) {
            const bool kept = fillMask[x] == 0.0f && band[x] >= minKept_;
            if (!kept) band[x] = 0.0f;
        }
    }
}

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
