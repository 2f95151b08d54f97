#pragma once

#include <limits>
#include <optional>

#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// The first pixel of a map that holds a value, in scan order: smallest y, then smallest x.
/// Absolute coordinates.
std::optional<PixelVec2f> firstPixelOf(const Map<Pixel32i>& map, Pixel32i value);

/// Labels the areas of a padded mask: `process(padded, labels)`, both of the same geometry.
///
/// Unmasked pixels connected to the start point get kOutside; the others, masked pixels and the
/// holes they enclose, form areas. The first area in scan order gets kFirstArea. Later ones stay
/// kUnlabelled: only one area is ever filled, and labelling the specks of a grainy mask would cost
/// more than everything else.
///
/// Runs on the calling thread. After an abort the labels are unspecified; without memory for a work
/// map they are all kOutside.
class RegionLabeller final : public Sampler<const Map<Pixel32i>, Map<Pixel32i>> {
public:
    static constexpr Pixel32i kUnmasked = 0;  ///< in the padded mask; anything else is masked
    static constexpr Pixel32i kOutside = 0;
    static constexpr Pixel32i kFirstArea = 1;
    static constexpr Pixel32i kUnlabelled = std::numeric_limits<Pixel32i>::max();

    /// `start` is an unmasked pixel, in absolute coordinates.
    explicit RegionLabeller(PixelVec2f start);
    void begin() override;

private:
    PixelVec2f start_;
};

}  // namespace Orvane::Engine
