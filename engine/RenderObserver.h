#pragma once

#include <span>

#include "engine/map/Map.h"
#include "engine/map/Region.h"

namespace Orvane::Engine {

/// One block as it was placed, in absolute pixel coordinates.
struct PlacedBlock {
    int x, y, width, height;  ///< in the output; clipped at the edge of the fill rectangle
    int srcX, srcY;           ///< the same corner in its texture
    int textureIndex;
};

/// A map that a stage made, borrowed for the call. Its pixels need not cover the fill rectangle:
/// "fillMask" and "compositeMask" are 0 to M, "pathBand" is positive where the boundary may run,
/// "luminanceGain" holds factors. "blocks" holds the number of the block that a pixel came from,
/// counted from 1 in the order of the fresh render; 0 is none.
struct ObservedMap {
    const char* name;
    const Map<Pixel32f>* map;
    float full;  ///< the value to show as full: M; 1 for factors; the count of blocks
    Region fillRect;
};

/// Receives the events of a render, on the render thread only. Most hosts want none: the engine
/// then holds a null pointer and spends nothing.
class RenderObserver {
public:
    virtual ~RenderObserver() = default;
    virtual void stageBegan(const char* stage) = 0;
    virtual void stageEnded(const char* stage) = 0;
    /// How much of the current stage is done, 0 to 1.
    virtual void progress(double fraction) = 0;
    virtual void blockLaid(const PlacedBlock& block) = 0;
    /// One line for the user.
    virtual void note(const char* text) = 0;

    /// Whether to call the two functions below.
    virtual bool wantsMaps() { return false; }
    virtual void mapMade(const ObservedMap& /*map*/) {}
    /// The closed path between texture and source, pixel by pixel and back to the first one. It may
    /// not enclose the region; a note reports that.
    virtual void pathFound(std::span<const PixelPoint> /*path*/, const Region& /*fillRect*/) {}
};

/// Reports a stage to an observer, if there is one, from construction to destruction.
class ObservedStage {
public:
    ObservedStage(RenderObserver* observer, const char* stage) : observer_(observer), stage_(stage)
    {
        if (observer_ != nullptr) observer_->stageBegan(stage_);
    }
    ~ObservedStage()
    {
        if (observer_ != nullptr) observer_->stageEnded(stage_);
    }
    ObservedStage(const ObservedStage&) = delete;
    ObservedStage& operator=(const ObservedStage&) = delete;

private:
    RenderObserver* observer_;
    const char* stage_;
};

}  // namespace Orvane::Engine
