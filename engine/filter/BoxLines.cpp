#include "engine/filter/BoxLines.h"

#include <algorithm>

namespace Orvane::Engine {

BoxLines::BoxLines(const BoxFilter& filter)
    : box_{.size = filter.size(),
           .fraction = filter.fraction,
           .norm = 1.0 / (static_cast<double>(filter.size()) + 2.0 * filter.fraction)}
{}

std::size_t BoxLines::samplesFor(int outputs) const
{
    return static_cast<std::size_t>(outputs) + static_cast<std::size_t>(box_.size) + 1;
}

void BoxLines::filter(float* samples, int phase, int outputs)
{
    const auto room = static_cast<std::size_t>(std::min(box_.size, outputs)) * kCount;
    if (tails_.size() < room) tails_.resize(room);
    const auto boxSegment = Kernels::kernels().plane.boxSegment;
    for (int done = 0; done < outputs;) {
        const int first = (phase + done) % box_.size;
        const int count = std::min(box_.size - first, outputs - done);
        boxSegment(samples + static_cast<std::ptrdiff_t>(done) * kCount, tails_.data(), box_, first,
                   count);
        done += count;
    }
}

}  // namespace Orvane::Engine
