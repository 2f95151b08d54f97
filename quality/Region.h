#pragma once

/// A region that is judged, and the matches of its patches.

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "quality/PatchPyramid.h"
#include "quality/PatchSearch.h"
#include "quality/PixelSums.h"

namespace Tesseret::Quality {

/// Patches of 8, 16, 32 and 64 pixels.
inline constexpr int kLevels = 4;

/// What changed, or could have changed, in a picture.
struct Region {
    const PatchPyramid* pixels = nullptr;
    int x = 0, y = 0;                  ///< the first of `pixels` in the source
    OfxRectI window{};                 ///< the part of `pixels` that is looked at
    PixelSums changed;                 ///< over the window
    std::optional<PixelSums> ignored;  ///< what other areas lost, over the window
};

/// Where a patch lies.
enum class Part : std::uint8_t { Outside, Rim, Inside };

struct LevelMatches {
    QueryGrid grid;
    std::vector<Part> parts;
    std::vector<Match> matches;
};

using RegionMatches = std::array<LevelMatches, kLevels>;

/// Looks up the patches that changed wholly (at the larger levels, mostly) and those on the rim.
RegionMatches matchRegion(const Region& region, const Reference& reference);

/// The root of the mean squared difference of a match, in tones.
double difference(const Match& match);

}  // namespace Tesseret::Quality
