#include "engine/filter/LumaOf.h"

#include <array>

#include "engine/kernels/Kernels.h"
#include "engine/map/MapRow.h"

namespace Orvane::Engine {

template <typename Pixel>
void readLuma(const Map<Pixel>& image, int y, int x0, int x1, float* luma)
{
    const RowReader row(image, y);
    const auto means = Kernels::pixelKernels<Pixel>(Kernels::kernels()).luma;
    const PixelSpan<Pixel> inside = row.interior(x0, x1);
    constexpr int kRun = 64;
    std::array<Pixel, kRun> pixels;
    const auto readThroughEdges = [&](int begin, int end) {
        for (int x = begin; x < end; x += kRun) {
            const int count = std::min(kRun, end - x);
            for (int i = 0; i < count; ++i) pixels[static_cast<std::size_t>(i)] = row[x + i];
            means(pixels.data(), luma + (x - x0), count);
        }
    };
    readThroughEdges(x0, inside.begin);
    if (inside.begin < inside.end) {
        means(inside.pixels, luma + (inside.begin - x0), inside.end - inside.begin);
    }
    readThroughEdges(inside.end, x1);
}

template void readLuma(const Map<PixelRGBA8>&, int, int, int, float*);
template void readLuma(const Map<PixelRGBA16>&, int, int, int, float*);
template void readLuma(const Map<PixelRGBAf>&, int, int, int, float*);

}  // namespace Orvane::Engine
