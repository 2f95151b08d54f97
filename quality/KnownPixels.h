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

/// Squares of known pixels round `area`, all of one size, at most `count` and none touching
/// another. They are as large as the area, but at most `largest` pixels wide, and smaller where
/// there is no room. Empty when there is no room at all. `known` is of knownLevels, for rows of
/// `width` pixels.
std::vector<OfxRectI> knownSquares(const std::vector<std::uint8_t>& known, int width, OfxRectI area,
                                   int largest, int count);

}  // namespace Tesseret::Quality
