#include "quality/FillDifference.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace Tesseret::Quality {
namespace {

/// Of the square of which a mean is taken.
constexpr int kRadius = 2;
/// A difference that is seen at once, in tones; white is 1023.
constexpr int kClear = 40;

/// Sums of the channels of a row of tones, over the pixels round each; `width` sums.
void addRow(const Tones& tones, int y, int first, int width, std::vector<int>& sums)
{
    for (int x = 0; x < width; ++x) {
        for (int near = -kRadius; near <= kRadius; ++near) {
            const int column = std::clamp(first + x + near, 0, tones.width - 1);
            const std::int16_t* const tone = tones.at(column, y);
            for (int c = 0; c < 3; ++c) sums[std::size_t(3 * x + c)] += tone[c];
        }
    }
}

/// Means over the squares round the pixels of a part; the picture's rim is repeated.
Tones softened(const Tones& tones, const OfxRectI& part)
{
    constexpr int kPixels = (2 * kRadius + 1) * (2 * kRadius + 1);
    Tones soft{part.x2 - part.x1, part.y2 - part.y1, {}};
    soft.values = std::make_unique_for_overwrite<std::int16_t[]>(3 * std::size_t(soft.width) *
                                                                 std::size_t(soft.height));
    std::vector<int> sums(3 * std::size_t(soft.width));
    for (int y = 0; y < soft.height; ++y) {
        std::ranges::fill(sums, 0);
        for (int near = -kRadius; near <= kRadius; ++near) {
            const int row = std::clamp(part.y1 + y + near, 0, tones.height - 1);
            addRow(tones, row, part.x1, soft.width, sums);
        }
        std::ranges::transform(sums, soft.at(0, y),
                               [](int sum) { return std::int16_t(sum / kPixels); });
    }
    return soft;
}

}  // namespace

FillDifference::FillDifference(const Picture& source, const Picture& lost, Picture area)
    : curve_(source, lost), area_(std::move(area))
{}

Tones FillDifference::look(const Picture& filled) const
{
    const OfxRectI& box = area_.bounds();
    const OfxRectI around = intersection(
        {box.x1 - kRadius, box.y1 - kRadius, box.x2 + kRadius, box.y2 + kRadius}, filled.bounds());
    const OfxRectI part{box.x1 - around.x1, box.y1 - around.y1, box.x2 - around.x1,
                        box.y2 - around.y1};
    return softened(curve_.apply(filled, around), part);
}

double FillDifference::between(const Tones& a, const Tones& b) const
{
    const OfxRectI& box = area_.bounds();
    std::size_t all = 0, different = 0;
    for (int y = 0; y < a.height; ++y) {
        const auto* counts = area_.pixel<std::uint8_t>(box.x1, box.y1 + y);
        const std::int16_t *p = a.at(0, y), *q = b.at(0, y);
        for (int x = 0; x < a.width; ++x, p += 3, q += 3) {
            if (counts[x] == 0) continue;
            ++all;
            const int largest =
                std::max({std::abs(p[0] - q[0]), std::abs(p[1] - q[1]), std::abs(p[2] - q[2])});
            if (largest >= kClear) ++different;
        }
    }
    return all == 0 ? 0.0 : double(different) / double(all);
}

}  // namespace Tesseret::Quality
