#include "engine/MapReports.h"

#include "engine/quilt/BlockLayout.h"

namespace Orvane::Engine {

void MapReports::reportGuides(const Map<Pixel32f>& fillMask, const Map<Pixel32f>& pathBand) const
{
    if (!areWanted()) return;
    report("fillMask", fillMask, maximum_);
    report("pathBand", pathBand, maximum_);
}

void MapReports::reportComposite(std::size_t textureCount, const Region& placed,
                                 std::span<const PixelPoint> path) const
{
    if (!areWanted()) return;
    report("blocks", numberBlocks(state_, textureCount, placed),
           static_cast<float>(state_.blockList.size()));
    if (!path.empty()) observer_->pathFound(path, state_.fillBounds);
    report("compositeMask", state_.compositeMask, maximum_);
    report("luminanceGain", state_.luminanceGain, 1.0f);
}

/// Reports a map that has pixels.
void MapReports::report(const char* name, const Map<Pixel32f>& map, float full) const
{
    if (map.isUsable()) observer_->mapMade({name, &map, full, state_.fillBounds});
}

}  // namespace Orvane::Engine
