#include "engine/RowCopy.h"

#include <algorithm>

#include "engine/MapRow.h"

namespace Orvane::Engine {

template <typename Pixel>
void RowCopy<Pixel>::processPass()
{
    const Map<Pixel>* image = this->aux();
    if (image == nullptr || !image->isUsable()) return;
    const Region& region = this->region();
    const int count = region.x1 - region.x0;
    const auto [yBegin, yEnd] = this->threadRows();
    for (int y = yBegin; y < yEnd; ++y) {
        const RowReader from(*image, y);
        RowWriter to(this->target(), y);
        if (const Pixel* span = from.span(region.x0, count)) {
            std::copy_n(span, count, to.from(region.x0));
        } else {
            for (int x = region.x0; x < region.x1; ++x) to[x] = from[x];
        }
    }
}

template class RowCopy<PixelRGBA8>;
template class RowCopy<PixelRGBA16>;
template class RowCopy<PixelRGBAf>;

}  // namespace Orvane::Engine
