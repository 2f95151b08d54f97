#pragma once

#include <cstddef>
#include <vector>

#include "engine/kernels/Kernels.h"

namespace Orvane::Engine {

/// The box of one axis: whole samples on both sides of the centre, and one more at each end with a
/// fractional weight. The weights add up to 1.
struct BoxFilter {
    int whole = 0;
    float fraction = 0.0f;

    /// The number of samples read on either side.
    int reach() const { return whole + 1; }
    /// The number of samples of full weight.
    int size() const { return 2 * whole + 1; }
};

/// A batch of kCount lines under a box filter, sample by sample side by side. Each worker has its
/// own.
///
/// A line is split into segments as long as the box, so that every box is the tail of one segment
/// and the head of the next (van Herk 1992). This takes three additions for each sample and no
/// subtraction, so that rounding errors of large samples do not reach distant small ones.
class BoxLines {
public:
    static constexpr int kCount = Kernels::kBoxLines;

    explicit BoxLines(const BoxFilter& filter);

    /// How many samples `outputs` results are made of.
    std::size_t samplesFor(int outputs) const;
    /// Replaces sample i of each line by the filter over samples i to i + box + 1, for the first
    /// `outputs` i. The first result is number `phase` of a line that starts with a segment.
    void filter(float* samples, int phase, int outputs);

private:
    Kernels::Box box_;
    std::vector<double> tails_;
};

}  // namespace Orvane::Engine
