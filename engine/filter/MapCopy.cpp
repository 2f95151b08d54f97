#include "engine/filter/MapCopy.h"

#include "engine/map/MapRow.h"

namespace Orvane::Engine {

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

}  // namespace Orvane::Engine
