#include "engine/mask/RegionLabeller.h"

#include <algorithm>

#include "engine/mask/FloodFill.h"

namespace Orvane::Engine {

std::optional<PixelVec2f> firstPixelOf(const Map<Pixel32i>& map, Pixel32i value)
{
    if (!map.isUsable()) return std::nullopt;
    const int columns = map.xAxis().storeLength;
    for (int row = 0; row < map.yAxis().storeLength; ++row) {
        const Pixel32i* pixels = map.pixelAt(0, row);
        const Pixel32i* found = std::find(pixels, pixels + columns, value);
        if (found == pixels + columns) continue;
        const auto column = static_cast<int>(found - pixels);
        return PixelVec2f{static_cast<float>(map.xAxis().origin + map.xAxis().storeStart + column),
                          static_cast<float>(map.yAxis().origin + map.yAxis().storeStart + row)};
    }
    return std::nullopt;
}

RegionLabeller::RegionLabeller(PixelVec2f start) : start_(start)
{
    setNumPasses(0);  // all the work is in begin, on the calling thread
}

void RegionLabeller::begin()
{
    FloodFill<Pixel32i> fill;
    fill.setStatusRecord(statusRecord());
    fill.setSeed(start_.x, start_.y);
    fill.setTargetValue(kUnmasked);
    fill.setPaintValue(kOutside);
    fill.setClearValue(kUnlabelled);
    fill.process(other(), target());
    if (pollAbort()) return;

    const std::optional<PixelVec2f> first = firstPixelOf(target(), kUnlabelled);
    if (!first) return;
    fill.setSeed(first->x, first->y);
    fill.setTargetValue(kUnlabelled);
    fill.setPaintValue(kFirstArea);
    fill.setKeepWritten(true);
    fill.process(target(), target());
}

}  // namespace Orvane::Engine
