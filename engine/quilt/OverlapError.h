#pragma once

#include <vector>

#include "engine/kernels/Kernels.h"

namespace Orvane::Engine {

/// Two images over one rectangle, and which of its pixels count.
template <typename Pixel>
struct Strip {
    Rows<Pixel> a, b;
    Rows<float> weights;  ///< pixels count where these are positive; null: all
    int width = 0, height = 0;
    /// The strip may be the part of a larger one, the rest of which does not count: its first row
    /// there, and how many rows that has; 0: it is all.
    int firstRow = 0, allRows = 0;

    bool isEmpty() const { return width < 1 || height < 1; }
    std::int64_t pixels() const { return std::int64_t{width} * height; }
};

/// How badly two images disagree: for each pixel the sum over R, G and B of the eighth power of
/// their difference relative to M, added up. The high power makes one visible step cost more than
/// many invisible ones.
template <typename Pixel>
class OverlapError {
public:
    /// For a host of so many threads: the sum is made of one float sum for each thread's share of
    /// the rows, whoever adds them up.
    explicit OverlapError(int threads) : threads_(threads) {}

    /// The sum, to the last bit.
    float exact(const Strip<Pixel>& strip);

    /// About the sum, many times as fast; more than `limit` when that is reached before the end.
    float rough(const Strip<Pixel>& strip, float limit) const;

private:
    int threads_;
    std::vector<float> line_;
};

/// What a rough sum over so many pixels says of the exact one.
struct ErrorBounds {
    double least, most;
};

/// Bounds of an exact error by a finite rough one.
///
/// Both are sums of terms that are never negative. A rounded sum of n such floats, in any order, is
/// off by at most n roundings of 2^-24 each, relative to the true one (Higham 2002, section 4.2);
/// the terms themselves add a few dozen, and what underflows is smaller than the constant. Twice
/// that leaves room for the second-order terms, up to a quarter in all.
ErrorBounds boundsOf(double rough, std::int64_t pixels);
/// A rough sum above this belongs to an exact one above `most`.
float roughLimit(double most, std::int64_t pixels);
/// Whether a rough sum over so many pixels says anything.
bool canBound(std::int64_t pixels);

}  // namespace Orvane::Engine
