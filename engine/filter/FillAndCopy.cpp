#include "engine/filter/FillAndCopy.h"

#include <algorithm>

#include "engine/map/MapRow.h"

namespace Orvane::Engine {

template <typename Pixel>
void ConstantFill<Pixel>::processPass()
{
    const Region& region = this->region();
    const auto [yBegin, yEnd] = this->threadRows();
    for (int y = yBegin; y < yEnd; ++y) {
        RowWriter row(this->target(), y);
        std::fill_n(row.from(region.x0), region.x1 - region.x0, value_);
    }
}

template class ConstantFill<PixelRGBA8>;
template class ConstantFill<PixelRGBA16>;
template class ConstantFill<PixelRGBAf>;
template class ConstantFill<Pixel32f>;
template class ConstantFill<Pixel32i>;
template class ConstantFill<PixelVec2f>;

template <typename Pixel>
void MapCopy<Pixel>::processPass()
{
    const Region& region = this->region();
    const auto [yBegin, yEnd] = this->threadRows();
    for (int y = yBegin; y < yEnd; ++y) {
        RowWriter to(this->target(), y);
        copyRow(RowReader(this->other(), y), to, region.x0, region.x1);
    }
}

template class MapCopy<Pixel32f>;
template class MapCopy<Pixel32i>;

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
