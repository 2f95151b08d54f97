#include "engine/map/MapAxis.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "engine/map/ExactMath.h"

namespace Orvane::Engine {
namespace {

// All three work on an index d counted from the active range's start, with L its length. Integer
// division and remainder go toward zero.

std::int64_t clamped(std::int64_t d, std::int64_t length)
{
    return d < 0 ? 0 : length - 1;
}

std::int64_t mirrored(std::int64_t d, std::int64_t length)
{
    if (d < 0) {
        const std::int64_t k = -d - 1;
        return (k / length) % 2 == 0 ? k % length : (d + 1) % length + length - 1;
    }
    return (d / length) % 2 != 0 ? length - d % length - 1 : d % length;
}

std::int64_t wrapped(std::int64_t d, std::int64_t length)
{
    return d < 0 ? (d + 1) % length + length - 1 : d % length;
}

/// Orders two inclusive ends and clamps them to [low, high].
std::pair<int, int> orderedWithin(int first, int last, int low, int high)
{
    if (first > last) std::swap(first, last);
    return {std::clamp(first, low, high), std::clamp(last, low, high)};
}

}  // namespace

void MapAxis::init(int newSize, EdgeMode mode)
{
    *this = MapAxis{};
    size = std::max(newSize, 0);
    edgeMode = mode;
    activeEnd = storeEnd = size - 1;
    activeLength = storeLength = size;
}

void MapAxis::setActiveRange(int first, int last)
{
    if (size < 1) return;
    std::tie(first, last) = orderedWithin(first, last, 0, size - 1);
    if ((flags & kClipToStored) != 0) {
        std::tie(first, last) = orderedWithin(first, last, storeStart, storeEnd);
    }
    activeStart = first;
    activeEnd = last;
    activeLength = last - first + 1;
}

void MapAxis::setStoredRange(int first, int last)
{
    if (size < 1) return;
    std::tie(storeStart, storeEnd) = orderedWithin(first, last, 0, size - 1);
    storeLength = storeEnd - storeStart + 1;
    flags = storeLength != size ? flags | kStoresPart : flags & ~kStoresPart;
    if ((flags & kClipToStored) != 0) setActiveRange(storeStart, storeEnd);
}

void MapAxis::resetStoredRange()
{
    storeStart = 0;
    storeEnd = size - 1;
    storeLength = size;
    flags &= ~kStoresPart;
}

void MapAxis::setClipToStored(bool on)
{
    flags = on ? flags | kClipToStored : flags & ~kClipToStored;
    if (on) setActiveRange(storeStart, storeEnd);
}

void MapAxis::setOffset(int pixels)
{
    offset = pixels;
    offsetF = static_cast<float>(pixels);
}

void MapAxis::setOffset(float pixels)
{
    offsetF = pixels;
    offset = floorToInt(pixels + 0.5f);
}

std::optional<int> MapAxis::resolveIndex(std::int64_t index) const
{
    const std::int64_t d = index - activeStart;
    if (d >= 0 && d < activeLength) return stored(index);
    if (activeLength < 1) return std::nullopt;
    switch (edgeMode) {
        case EdgeMode::EdgeNone:
            return std::nullopt;
        case EdgeMode::EdgeClamp:
            return stored(activeStart + clamped(d, activeLength));
        case EdgeMode::EdgeMirror:
            return stored(activeStart + mirrored(d, activeLength));
        case EdgeMode::EdgeWrap:
            return stored(activeStart + wrapped(d, activeLength));
        case EdgeMode::EdgeFree:
            break;
    }
    return stored(index);
}

std::optional<int> MapAxis::interiorIndex(int p, int count) const
{
    const std::int64_t first = std::int64_t{p} - offset;
    const std::int64_t last = first + count - 1;
    if (first < std::max(activeStart, storeStart) || last > std::min(activeEnd, storeEnd))
        return {};
    return static_cast<int>(first - storeStart);
}

std::optional<int> MapAxis::translate(int p) const
{
    return stored(std::int64_t{p} - origin);
}

std::optional<int> MapAxis::stored(std::int64_t index) const
{
    const std::int64_t inStore = index - storeStart;
    if (inStore < 0 || inStore >= storeLength) return std::nullopt;
    return static_cast<int>(inStore);
}

}  // namespace Orvane::Engine
