#include "engine/filter/LumaOf.h"

#include <type_traits>

#include "engine/map/MapRow.h"

namespace Orvane::Engine {
namespace {

template <typename Pixel>
float lumaOf(const Pixel& p)
{
    if constexpr (std::is_integral_v<typename Pixel::Channel>) {
        // exact: the sum fits an int, and `/` truncates.
        const int mean = (p.r + p.g + p.b) / 3;
        return static_cast<float>(mean);
    } else {
        // exact: float sums in the order R, G, B, then a float quotient.
        const float redGreen = p.r + p.g;
        const float sum = redGreen + p.b;
        return sum / 3.0f;
    }
}

}  // namespace

template <typename Pixel>
void LumaOf<Pixel>::processPass()
{
    const Region& region = this->region();
    const auto [yBegin, yEnd] = this->threadRows();
    for (int y = yBegin; y < yEnd; ++y) {
        const RowReader image(this->other(), y);
        RowWriter luma(this->target(), y);
        for (int x = region.x0; x < region.x1; ++x) luma[x] = lumaOf(image[x]);
    }
}

template class LumaOf<PixelRGBA8>;
template class LumaOf<PixelRGBA16>;
template class LumaOf<PixelRGBAf>;

}  // namespace Orvane::Engine
