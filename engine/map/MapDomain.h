#pragma once

#include <cstdint>

#include "engine/map/MapAxis.h"
#include "engine/map/Region.h"

namespace Orvane::Engine {

/// The geometry of a map: two axes in absolute pixel coordinates, y upwards. Owns nothing.
class MapDomain {
public:
    static constexpr std::uint32_t kStoresPart =
        1;  ///< at least one axis stores only part of itself

    MapDomain() = default;
    MapDomain(const MapDomain&) = delete;
    MapDomain& operator=(const MapDomain&) = delete;

    // Virtual operations in slot order. Ranges are inclusive.
    virtual ~MapDomain() = default;
    virtual void setActiveRange(int x0, int x1, int y0, int y1);
    virtual void setEdgeMode(EdgeMode xMode, EdgeMode yMode);
    virtual void setOffset(int x, int y);
    virtual void setOffset(float x, float y);
    virtual void setStoredRange(int x0, int x1, int y0, int y1);
    virtual void resetStoredRange();
    virtual void setClipToStored(bool on);
    virtual void reapplyActiveRange();

    /// The first stored pixel, or null when there is no storage.
    virtual const void* firstPixel() const = 0;

    const MapAxis& xAxis() const { return xAxis_; }
    const MapAxis& yAxis() const { return yAxis_; }
    int width() const { return xAxis_.size; }
    int height() const { return yAxis_.size; }
    std::uint32_t domainFlags() const { return flags_; }

    /// Resets both axes: at 0, wholly active and stored, read as `EdgeNone`. Releases nothing.
    void setSize(int width, int height);
    /// The absolute coordinates of index (0, 0).
    void setOrigin(int x, int y);
    /// Puts index (0, 0) at (x, y), for reading and for direct access alike.
    void placeAt(int x, int y);
    /// Stores only the part of a rectangle in absolute coordinates that lies in the map, at least
    /// one pixel. Called before `allocate`: with `EdgeNone` all other pixels read as the fill value
    /// and take no memory.
    void storeOnly(const Region& part);
    /// Everything, and what is stored of it, in absolute coordinates.
    Region extent() const;
    Region storedExtent() const;
    /// Copies both axes of another map; storage is untouched.
    void copyGeometry(const MapDomain& other);

    /// Whether a node can process this map: at least one pixel, and storage.
    bool isUsable() const { return width() >= 1 && height() >= 1 && firstPixel() != nullptr; }

protected:
    void swapGeometry(MapDomain& other) noexcept;

private:
    void updateFlags();

    MapAxis xAxis_, yAxis_;
    std::uint32_t flags_ = 0;
};

}  // namespace Orvane::Engine
