#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "engine/map/Rows.h"

namespace Orvane::Engine {

struct SeamSearch {
    int step;    ///< largest distance between neighbouring entries of the path
    int margin;  ///< columns (rows) at both sides of the strip that the seam avoids
};

/// The errors of a strip, arranged along its seam, so that the search reads contiguous memory. A
/// line is a row of the strip for a vertical seam, and a column, counted from the last one, for a
/// horizontal seam. Storage is reused from strip to strip.
class SeamStrip {
public:
    /// Makes room for `lines` lines of `across` errors, whose values are unspecified.
    void shape(int lines, int across);
    int lines() const { return lines_; }
    int across() const { return across_; }

    float* errors(int line) { return line_ + line * stride_; }
    /// The distance from one line to the next, floats.
    std::ptrdiff_t stride() const { return stride_; }
    float* costs(int line) { return costs_.data() + (errors(line) - errors_.data()); }

    /// Fills the lines from the rows of a strip of `lines` x `across` pixels.
    void setColumns(const Rows<float>& rows);

private:
    int lines_ = 0, across_ = 0;
    std::ptrdiff_t stride_ = 0;
    float* line_ = nullptr;  ///< the first line's first error
    std::vector<float> errors_, costs_;
};

/// The seam of minimum error through a strip (Efros and Freeman 2001, section 2.1), by dynamic
/// programming over float sums from the first line to the last, and back; ties go to the smallest
/// index. In a strip narrower than both margins the margins shrink until the middle is left. `path`
/// gets the position across the strip for each line.
void bestFitPath(const SeamSearch& search, SeamStrip& strip, std::span<int> path);

}  // namespace Orvane::Engine
