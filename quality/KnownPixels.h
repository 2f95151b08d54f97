#pragma once

/// Which parts of a picture are known, and places in it that are like an area to fill.

#include <cstdint>
#include <vector>

#include "picture/Picture.h"

namespace Tesseret::Quality {

/// Pixels so close to lost ones are no reference: what a matte misses of the removed thing lies
/// there.
inline constexpr int kDoubtful = 4;

/// For each pixel, row by row from the lowest, in how many of `levels` levels the patch that starts
/// there lies in the picture and kDoubtful away from lost pixels.
std::vector<std::uint8_t> knownLevels(const Picture& lost, int levels);

/// The same for pixels that are marked: in how many levels the patch has no marked pixel.
std::vector<std::uint8_t> unmarkedLevels(std::vector<std::uint8_t> marks, int width, int height,
                                         int levels);

/// Squares of known pixels round `area` (pixels from the lost picture's first), all of one size, at
/// most `count` and none touching another. They are as large as the area, but at most `largest`
/// pixels wide, and smaller where there is no room. Empty when there is no room at all.
std::vector<OfxRectI> knownSquares(const Picture& lost, OfxRectI area, int largest, int count);

}  // namespace Tesseret::Quality
