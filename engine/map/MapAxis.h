#pragma once

#include <cstdint>
#include <optional>

namespace Orvane::Engine {

/// How a coordinate outside the active range of an axis is read.
enum class EdgeMode : std::int32_t {
    EdgeNone = 0,    ///< there is no pixel
    EdgeClamp = 1,   ///< the nearest pixel
    EdgeMirror = 2,  ///< reflected, the edge pixel repeated
    EdgeWrap = 3,    ///< periodic
    EdgeFree = 4     ///< unchanged; any other value means the same
};

/// One axis of a map: its size, position, edge mode, and the part of it that has pixels in memory.
/// Ranges are inclusive index ranges; index 0 is the coordinate `origin`.
struct MapAxis {
    static constexpr std::uint32_t kStoresPart = 1;  ///< the stored range is not the whole axis
    static constexpr std::uint32_t kClipToStored =
        2;  ///< the active range stays in the stored range

    std::int32_t size = 0;
    float offsetF = 0.0f;     ///< subtracted from a coordinate before sampling
    std::int32_t offset = 0;  ///< subtracted from a coordinate before it is resolved
    EdgeMode edgeMode = EdgeMode::EdgeNone;
    std::int32_t activeStart = 0, activeEnd = -1, activeLength = 0;
    std::int32_t origin = 0;  ///< the absolute coordinate of index 0
    std::int32_t storeStart = 0, storeEnd = -1, storeLength = 0;
    std::uint32_t flags = 0;

    /// An axis of `newSize` pixels (a negative size counts as 0), wholly active and stored, at 0.
    void init(int newSize, EdgeMode mode);

    /// Ends in any order; clamped to the axis, and to the stored range with kClipToStored.
    void setActiveRange(int first, int last);
    void setStoredRange(int first, int last);
    void resetStoredRange();
    void setClipToStored(bool on);
    void setOffset(int pixels);
    /// The integer offset becomes the rounded float offset.
    void setOffset(float pixels);

    bool storesPart() const { return (flags & kStoresPart) != 0; }

    /// The stored index that coordinate p reads, through offset, edge mode and stored range.
    std::optional<int> resolve(int p) const { return resolveIndex(std::int64_t{p} - offset); }
    /// The same for an index, to which no offset applies.
    std::optional<int> resolveIndex(std::int64_t index) const;
    /// The stored index that p reads when none of [p, p + count) needs edge handling.
    std::optional<int> interiorIndex(int p, int count) const;
    /// The stored index of the absolute coordinate p itself, if it has a pixel.
    std::optional<int> translate(int p) const;

private:
    std::optional<int> stored(std::int64_t index) const;
};

}  // namespace Orvane::Engine
