#pragma once

#include <vector>

#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// One side of a comparison: the map's pixel (x + i, y + j) stands at (i, j).
template <typename Pixel>
struct Placed {
    const Map<Pixel>* map = nullptr;
    int x = 0, y = 0;
};

/// How badly two images disagree: for each pixel of the error map, the sum over R, G and B of the
/// eighth power of their difference relative to M. The high power makes one visible step cost more
/// than many invisible ones.
template <typename Pixel>
class OverlapError final : public Generator<Map<Pixel32f>> {
public:
    /// The two images to compare; local (0, 0) is the error map's first pixel.
    void setImages(const Placed<Pixel>& a, const Placed<Pixel>& b) { a_ = a, b_ = b; }
    /// Counts only pixels where this map is positive; a null map counts all.
    void setWeight(const Placed<Pixel32f>& weight) { weight_ = weight; }

    /// Fills the error map, W x H floats of origin 0, and returns the sum of it: one float sum for
    /// each thread, added in thread order, so the last bits depend on the number of threads. 0 when
    /// the map has no storage or the render was aborted.
    float measure(Map<Pixel32f>& error);

    void beginPass() override;
    void processPass() override;

private:
    float measureRow(int y, float sum);

    Placed<Pixel> a_, b_;
    Placed<Pixel32f> weight_;
    std::vector<float> threadSums_;
};

}  // namespace Orvane::Engine
