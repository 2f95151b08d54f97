#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "engine/map/Rows.h"

namespace Orvane::Engine {

struct SeamSearch {
    int step;    ///< largest distance between neighbouring entries of the path
    int margin;  ///< columns (rows) at both sides of the strip where the seam may not lie
};

/// The errors of a strip, seen along its seam: a line is a row of the strip for a seam that runs
/// upwards, and a column for one that runs to the right, counted from the last one. So the search
/// runs along memory either way. Keeps its storage from strip to strip.
class SeamStrip {
public:
    /// Makes room for so many lines of `across` errors. Their values are what they were.
    void shape(int lines, int across);
    int lines() const { return lines_; }
    int across() const { return across_; }

    float* errors(int line) { return line_ + line * stride_; }
    /// From one line to the next, floats.
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

/// The seam of least error through a strip (Efros and Freeman 2001, section 2.1), by dynamic
/// programming over float sums from the first line to the last, and back; every minimum goes to the
/// smallest index. A strip narrower than both margins has its margins cut so that the middle is
/// left. `path` gets the position across the strip for each line.
void bestFitPath(const SeamSearch& search, SeamStrip& strip, std::span<int> path);

}  // namespace Orvane::Engine
