#pragma once

#include <cstddef>
#include <span>

#include "engine/RenderObserver.h"
#include "engine/TemporalState.h"
#include "engine/map/Region.h"

namespace Orvane::Engine {

/// Reports the maps, blocks and path of a render to its observer. Does nothing without an observer,
/// or when it wants no maps.
class MapReports {
public:
    /// `maximum` is M, the channel maximum of the render depth. The observer may be null. Both must
    /// outlive this object.
    MapReports(RenderObserver* observer, const TemporalState& state, float maximum)
        : observer_(observer), state_(state), maximum_(maximum)
    {}

    /// Whether anything would be reported.
    bool areWanted() const { return observer_ != nullptr && observer_->wantsMaps(); }

    /// Reports the guides of a masked fill: the mask, and the band of known pixels round it.
    void reportGuides(const Map<Pixel32f>& fillMask, const Map<Pixel32f>& pathBand) const;

    /// Reports the inputs of the composite: the recorded blocks inside `placed` whose texture is
    /// one of the first `textureCount`, the path unless it is empty, the composite mask and the
    /// gain.
    void reportComposite(std::size_t textureCount, const Region& placed,
                         std::span<const PixelPoint> path) const;

private:
    void report(const char* name, const Map<Pixel32f>& map, float full, float outside) const;

    RenderObserver* observer_;
    const TemporalState& state_;
    float maximum_;
};

}  // namespace Orvane::Engine
