#pragma once

#include <vector>

#include "engine/kernels/Kernels.h"

namespace Orvane::Engine {

/// Two images over one rectangle, and weights that select its pixels.
template <typename Pixel>
struct Strip {
    Rows<Pixel> a, b;
    Rows<float> weights;  ///< pixels with positive weights count; null: all
    int width = 0, height = 0;
    /// The strip may be part of a taller one whose other pixels do not count: its first row in that
    /// one, and the rows of that one; 0 when the strip is whole.
    int firstRow = 0, allRows = 0;

    bool isEmpty() const { return width < 1 || height < 1; }
    std::int64_t pixels() const { return std::int64_t{width} * height; }
};

/// The difference of two images: the sum over all pixels and R, G and B of the eighth power of the
/// channel difference relative to M. The high power makes one visible step cost more than many
/// invisible ones.
template <typename Pixel>
class OverlapError {
public:
    /// `threads` is the number of host threads: the sum consists of one float sum for each thread's
    /// share of the rows, whichever thread computes it.
    explicit OverlapError(int threads) : threads_(threads) {}

    /// The exact sum, in its fixed order.
    float exact(const Strip<Pixel>& strip);

    /// An approximation of the sum, many times as fast. Stops early once it exceeds `limit`.
    float rough(const Strip<Pixel>& strip, float limit) const;

private:
    int threads_;
    std::vector<float> line_;
};

/// Bounds of an exact error.
struct ErrorBounds {
    double lower, upper;
};

/// The bounds that a finite rough error over so many pixels gives for the exact one.
///
/// Both are sums of terms that are never negative. A rounded sum of n such floats, in any order,
/// has a relative error of at most n roundings of 2^-24 each (Higham 2002, section 4.2); the terms
/// themselves add a few dozen, and underflow is smaller than the constant. Twice that leaves room
/// for the second-order terms, up to a quarter in all.
ErrorBounds boundsOf(double rough, std::int64_t pixels);
/// The limit above which a rough error implies an exact one above `upper`.
float roughLimit(double upper, std::int64_t pixels);
/// Whether a rough error over so many pixels gives any bounds.
bool canBound(std::int64_t pixels);

}  // namespace Orvane::Engine
