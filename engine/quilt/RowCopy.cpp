#include "engine/quilt/RowCopy.h"

#include "engine/map/MapRow.h"

namespace Orvane::Engine {

template <typename Pixel>
void RowCopy<Pixel>::processPass()
{
    const Map<Pixel>* image = this->aux();
    if (image == nullptr || !image->isUsable()) return;
    const Region& region = this->region();
    const auto [yBegin, yEnd] = this->threadRows();
    for (int y = yBegin; y < yEnd; ++y) {
        RowWriter to(this->target(), y);
        copyRow(RowReader(*image, y), to, region.x0, region.x1);
    }
}

template class RowCopy<PixelRGBA8>;
template class RowCopy<PixelRGBA16>;
template class RowCopy<PixelRGBAf>;

}  // namespace Orvane::Engine
