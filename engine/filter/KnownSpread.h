#pragma once

#include <cstdint>
#include <vector>

#include "engine/map/Map.h"
#include "engine/map/Region.h"

namespace Orvane::Engine {

/// Spreads known pixels by one step: a pixel is known when enough of those in the box around it
/// were. A map has 1 for a known pixel, 0 for any other.
///
/// Enough is the share 1 / (radius + 1)^2 of the box's pixels, as the blurred map would tell it:
/// that share is never nearer to a whole number of pixels than the blur's rounding, so that
/// counting gives the same answer.
class KnownSpread {
public:
    explicit KnownSpread(int radius);

    /// Writes the rows of `part` that lie in `rows`. Known pixels are read inside `readable` only.
    /// Both maps store both regions.
    void run(const Map<Pixel8>& before, const Region& readable, Map<Pixel8>& after,
             const Region& part, int rowBegin, int rowEnd);

private:
    template <typename Count>
    void countRows(const Map<Pixel8>& before, const Region& readable, Map<Pixel8>& after,
                   const Region& part, int rowBegin, int rowEnd, std::vector<Count>& counts);
    void spreadRow(int width, unsigned char* to);
    void sumBoxes(int begin, int end, unsigned char* to);
    void sumInTurn(int begin, int end, unsigned char* to);
    void sumByDoubling(int begin, int end, unsigned char* to);

    int radius_;
    int enough_;  ///< pixels
    // The box's columns of one row: the pixels counted in each, up to `enough_`, and their sums
    // over more and more columns, and over whole boxes.
    std::vector<unsigned char> columns_, sums_, wider_, boxes_;
    std::vector<unsigned char> nothing_;  ///< a row of zeros
    std::vector<std::uint8_t> counts_;
    std::vector<std::uint32_t> wideCounts_;
};

}  // namespace Orvane::Engine
