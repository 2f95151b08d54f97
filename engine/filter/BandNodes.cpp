#include "engine/filter/BandNodes.h"

#include <algorithm>

#include "engine/map/MapRow.h"

namespace Orvane::Engine {
namespace {

PixelVec2f differences(float here, float right, float above)
{
    return {right - here, above - here};
}

}  // namespace

void MaskGradient::processPass()
{
    const auto [yBegin, yEnd] = threadRows();
    for (int y = yBegin; y < yEnd; ++y) {
        const RowReader mask(other(), y);
        const RowReader next(other(), y + 1);
        RowWriter gradient(target(), y);
        int x = region().x0;
        // All but the last column and row are read in place.
        const int inside = region().x1 - 1 - x;
        const Pixel32f* const here = mask.span(x, inside + 1);
        const Pixel32f* const above = next.span(x, inside + 1);
        if (here != nullptr && above != nullptr) {
            PixelVec2f* const to = gradient.from(x);
            for (int i = 0; i < inside; ++i) to[i] = differences(here[i], here[i + 1], above[i]);
            x += inside;
        }
        for (; x < region().x1; ++x) gradient[x] = differences(mask[x], mask[x + 1], next[x]);
    }
}

void BandCut::processPass()
{
    const auto [yBegin, yEnd] = threadRows();
    for (int y = yBegin; y < yEnd; ++y) {
        const RowReader fillMask(other(), y);
        float* const band = RowWriter(target(), y).from(region().x0);
        const auto cut = [band, this](int i, float mask) {
            const bool kept = mask == 0.0f && band[i] >= minKept_;
            band[i] = kept ? band[i] : 0.0f;
        };
        // Reading a mask beyond its edge takes longer, and most of the band is weak there.
        const auto cutBeyond = [&](int i) {
            cut(i, band[i] >= minKept_ ? fillMask[region().x0 + i] : 0.0f);
        };
        const int count = region().x1 - region().x0;
        const auto inside = fillMask.interior(region().x0, region().x1);
        const int begin = inside.begin - region().x0, end = inside.end - region().x0;
        for (int i = 0; i < begin; ++i) cutBeyond(i);
        for (int i = begin; i < end; ++i) cut(i, inside.pixels[i - begin]);
        for (int i = end; i < count; ++i) cutBeyond(i);
    }
}

}  // namespace Orvane::Engine
