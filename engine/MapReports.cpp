#include "engine/MapReports.h"

#include "engine/filter/FillAndCopy.h"
#include "engine/quilt/BlockLayout.h"

namespace Orvane::Engine {
namespace {

/// A map with all its pixels; those that the original does not store are `outside`.
Map<Pixel32f> wholeOf(const Map<Pixel32f>& map, float outside)
{
    Map<Pixel32f> whole;
    whole.copyGeometry(map);
    whole.resetStoredRange();
    whole.allocate();
    ConstantFill<Pixel32f>(outside).process(&whole);
    MapCopy<Pixel32f> copy;
    copy.setRegion(map.storedExtent());
    copy.process(map, whole);
    return whole;
}

}  // namespace

void MapReports::reportGuides(const Map<Pixel32f>& fillMask, const Map<Pixel32f>& pathBand) const
{
    if (!areWanted()) return;
    report("fillMask", fillMask, maximum_, 0.0f);
    report("pathBand", pathBand, maximum_, 0.0f);
}

void MapReports::reportComposite(std::size_t textureCount, const Region& placed,
                                 std::span<const PixelPoint> path) const
{
    if (!areWanted()) return;
    report("blocks", numberBlocks(state_, textureCount, placed),
           static_cast<float>(state_.blockList.size()), 0.0f);
    if (!path.empty()) observer_->pathFound(path, state_.fillBounds);
    report("compositeMask", state_.compositeMask, maximum_, state_.compositeMask.fillValue());
    report("luminanceGain", state_.luminanceGain, 1.0f, 1.0f);
}

/// Reports a map that has pixels; `outside` is the value of those that it does not store.
void MapReports::report(const char* name, const Map<Pixel32f>& map, float full, float outside) const
{
    if (!map.isUsable()) return;
    if ((map.domainFlags() & MapDomain::kStoresPart) == 0) {
        observer_->mapMade({name, &map, full, state_.fillBounds});
        return;
    }
    const Map<Pixel32f> whole = wholeOf(map, outside);
    if (whole.isUsable()) observer_->mapMade({name, &whole, full, state_.fillBounds});
}

}  // namespace Orvane::Engine
