#pragma once

/// For patches of one picture, the most similar patches of another.

#include <cstdint>
#include <vector>

#include "quality/CopyIndex.h"
#include "quality/PatchPyramid.h"

namespace Tesseret::Quality {

/// What may be looked up: patches without lost pixels. Coordinates start at the first pixel.
struct Reference {
    const PatchPyramid* pixels = nullptr;
    const CopyIndex* copies = nullptr;  ///< optional
    /// For each pixel, in how many levels the patch that starts there may be looked up.
    const std::vector<std::uint8_t>* levels = nullptr;
    /// Patches that touch this region are left out, too.
    OfxRectI except{0, 0, 0, 0};

    bool has(int x, int y, int level) const;
};

/// The places that are looked up: every `step` pixels from (x, y) of the picture `pixels`, where
/// `wanted` is not 0.
struct QueryGrid {
    const PatchPyramid* pixels = nullptr;
    int x = 0, y = 0;
    int step = 1;
    int columns = 0, rows = 0;
    std::vector<std::uint8_t> wanted;

    std::size_t size() const { return std::size_t(columns) * std::size_t(rows); }
};

struct Match {
    static constexpr std::int32_t kNone = INT32_MAX;
    std::int32_t difference = kNone;  ///< sum of squares over kPatchValues
    int x = 0, y = 0;                 ///< in the reference
};

/// Searches as Barnes, Shechtman, Finkelstein and Goldman do ("PatchMatch: A Randomized
/// Correspondence Algorithm for Structural Image Editing", 2009): good matches spread to their
/// neighbours, and are improved by tries in ever smaller surroundings. Starts from exact copies,
/// and from `start`, matches of the same grid in another level, unless that is empty. The same
/// arguments give the same matches.
std::vector<Match> searchPatches(const QueryGrid& queries, const Reference& reference, int level,
                                 const std::vector<Match>& start, int rounds);

}  // namespace Tesseret::Quality
