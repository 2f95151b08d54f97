#include "render/MatteGrow.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <vector>

namespace Tesseret::Render {

namespace {

/// For each row distance within the disc, the disc's half width there.
std::vector<int> discReach(double radius)
{
    std::vector<int> reach;
    for (int row = 0; row <= radius; ++row) {
        reach.push_back(static_cast<int>(std::sqrt(radius * radius - double(row) * double(row))));
    }
    return reach;
}

OfxRectI grownBounds(const OfxRectI& bounds, int by, const OfxRectI& frame)
{
    const OfxRectI wide{bounds.x1 - by, bounds.y1 - by, bounds.x2 + by, bounds.y2 + by};
    const OfxRectI inside = intersection(wide, frame);
    if (isEmpty(inside)) return bounds;
    return {std::min(bounds.x1, inside.x1), std::min(bounds.y1, inside.y1),
            std::max(bounds.x2, inside.x2), std::max(bounds.y2, inside.y2)};
}

/// The masked segment of one row, and its maxima over every segment of 1, 2, 4, ... pixels: two
/// overlapping ones give the maximum over any length.
template <typename Channel>
class RowMaxima {
public:
    /// For reaches up to `maxReach` pixels.
    explicit RowMaxima(int maxReach)
        : maxReach_(static_cast<std::size_t>(maxReach)),
          levels_(static_cast<std::size_t>(std::bit_width(2 * maxReach_ + 1)))
    {}

    /// False when nothing is masked.
    bool take(const Channel* values, int width, Polarity polarity)
    {
        const auto strength = [&](int x) {
            const Channel value = masking(values[x], polarity);
            return value > Channel{0} ? value : Channel{0};  // NaN too
        };
        int first = 0, end = width;
        while (first < end && strength(first) == Channel{0}) ++first;
        while (end > first && strength(end - 1) == Channel{0}) --end;
        if (first == end) return false;
        first_ = first;
        length_ = static_cast<std::size_t>(end - first);
        levels_[0].assign(length_ + 4 * maxReach_, Channel{0});
        for (int x = first; x < end; ++x) {
            levels_[0][2 * maxReach_ + static_cast<std::size_t>(x - first)] = strength(x);
        }
        for (std::size_t k = 1; k < levels_.size(); ++k) combine(levels_[k - 1], levels_[k], k);
        return true;
    }

    int first() const { return first_; }
    int length() const { return static_cast<int>(length_); }

    /// Raises target[i] to the maximum of the pixels from `from + i - reach` to `from + i + reach`,
    /// counted from the first masked one.
    void raise(Channel* target, int from, int count, int reach) const
    {
        const std::size_t segment = 2 * static_cast<std::size_t>(reach) + 1;
        const std::size_t half = std::bit_floor(segment);  // at least half of the segment
        const auto& maxima = levels_[static_cast<std::size_t>(std::countr_zero(half))];
        const Channel* const left =
            maxima.data() + static_cast<std::ptrdiff_t>(2 * maxReach_) + from - reach;
        const Channel* const right = left + (segment - half);
        for (int i = 0; i < count; ++i) {
            target[i] = std::max(target[i], std::max(left[i], right[i]));
        }
    }

private:
    static void combine(const std::vector<Channel>& shorter, std::vector<Channel>& longer,
                        std::size_t level)
    {
        const std::size_t half = std::size_t{1} << (level - 1);
        longer.resize(shorter.size() - half);
        for (std::size_t i = 0; i < longer.size(); ++i) {
            longer[i] = std::max(shorter[i], shorter[i + half]);
        }
    }

    std::size_t maxReach_;
    int first_ = 0;
    std::size_t length_ = 0;
    std::vector<std::vector<Channel>> levels_;
};

/// Writes the strength of masking, whatever the polarity of the matte.
template <typename Channel>
void spread(const Picture& matte, Polarity polarity, const std::vector<int>& reach, Picture& result)
{
    const OfxRectI from = matte.bounds();
    const OfxRectI to = result.bounds();
    const int maxReach = reach.front();
    const int rows = static_cast<int>(reach.size()) - 1;
    RowMaxima<Channel> maxima(maxReach);
    for (int y = from.y1; y < from.y2; ++y) {
        if (!maxima.take(matte.pixel<Channel>(from.x1, y), matte.width(), polarity)) continue;
        const int first = from.x1 + maxima.first();
        for (int row = std::max(y - rows, to.y1); row < std::min(y + rows + 1, to.y2); ++row) {
            const int side = reach[static_cast<std::size_t>(std::abs(row - y))];
            const int x1 = std::max(first - side, to.x1);
            const int x2 = std::min(first + maxima.length() + side, to.x2);
            maxima.raise(result.pixel<Channel>(x1, row), x1 - first, x2 - x1, side);
        }
    }
}

}  // namespace

Picture grownMatte(const Picture& matte, double radius, Polarity polarity, const OfxRectI& frame)
{
    const std::vector<int> reach = discReach(radius);
    const OfxRectI bounds = grownBounds(matte.bounds(), reach.front(), frame);
    Picture result(bounds, matte.depth(), Components::Alpha);
    result.setPixelAspectRatio(matte.pixelAspectRatio());
    result.setAlpha(matte.alpha());
    atDepth(matte.depth(), [&]<typename Channel>(Channel) {
        spread<Channel>(matte, polarity, reach, result);
        for (int y = bounds.y1; y < bounds.y2 && polarity == Polarity::Black; ++y) {
            auto* const row = result.pixel<Channel>(bounds.x1, y);
            std::transform(row, row + result.width(), row,
                           [](Channel strength) { return masking(strength, Polarity::Black); });
        }
    });
    return result;
}

}  // namespace Tesseret::Render
