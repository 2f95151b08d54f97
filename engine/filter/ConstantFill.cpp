#include "engine/filter/ConstantFill.h"

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

}  // namespace Orvane::Engine
