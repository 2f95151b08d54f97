#include "engine/filter/MaskGradient.h"

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

}  // namespace Orvane::Engine
