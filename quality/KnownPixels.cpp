#include "quality/KnownPixels.h"

#include <algorithm>
#include <cstdlib>

#include "quality/PatchPyramid.h"

namespace Tesseret::Quality {
namespace {

/// 1 for lost pixels and their surroundings.
std::vector<std::uint8_t> doubtful(const Picture& lost)
{
    const int width = lost.width(), height = lost.height();
    std::vector<std::uint8_t> result(std::size_t(width) * std::size_t(height));
    for (int y = 0; y < height; ++y) {
        const auto* row = reinterpret_cast<const std::uint8_t*>(lost.row(lost.bounds().y1 + y));
        for (int x = 0; x < width; ++x) {
            if (row[x] == 0) continue;
            const int first = x;
            while (x + 1 < width && row[x + 1] != 0) ++x;
            const int from = std::max(first - kDoubtful, 0);
            const int to = std::min(x + kDoubtful + 1, width);
            for (int i = std::max(y - kDoubtful, 0); i < std::min(y + kDoubtful + 1, height); ++i) {
                std::fill_n(result.begin() + std::ptrdiff_t(i) * width + from, to - from,
                            std::uint8_t{1});
            }
        }
    }
    return result;
}

/// Finds squares of one side in a map of known patches.
class SquareFinder {
public:
    SquareFinder(const std::vector<std::uint8_t>& known, int width, int side)
        : known_(known), width_(width), height_(int(known.size() / std::size_t(width))), side_(side)
    {
        while (patchSide(level_ + 1) <= side) ++level_;
    }

    /// In a box round the area, at least kDoubtful apart.
    std::vector<OfxRectI> around(OfxRectI area, int reach) const
    {
        std::vector<OfxRectI> found;
        const int room = side_ + 2 * kDoubtful;
        // Twice as fine as the squares: more of them fit between mattes.
        for (int y = area.y1 - reach; y + side_ <= area.y2 + reach; y += room / 2) {
            for (int x = area.x1 - reach; x + side_ <= area.x2 + reach; x += room / 2) {
                if (!isKnown(x, y)) continue;
                const bool free =
                    std::none_of(found.begin(), found.end(), [&](const OfxRectI& other) {
                        return std::abs(other.x1 - x) < room && std::abs(other.y1 - y) < room;
                    });
                if (free) found.push_back({x, y, x + side_, y + side_});
            }
        }
        return found;
    }

private:
    /// Covers the square with patches.
    bool isKnown(int x, int y) const
    {
        if (x < 0 || y < 0 || x + side_ > width_ || y + side_ > height_) return false;
        const int patch = patchSide(level_);
        for (int dy = 0; dy < side_; dy += patch) {
            for (int dx = 0; dx < side_; dx += patch) {
                const int px = x + std::min(dx, side_ - patch);
                const int py = y + std::min(dy, side_ - patch);
                const std::size_t at = std::size_t(py) * std::size_t(width_) + std::size_t(px);
                if (known_[at] <= level_) return false;
            }
        }
        return true;
    }

    const std::vector<std::uint8_t>& known_;
    int width_, height_, side_;
    int level_ = 0;
};

}  // namespace

std::vector<std::uint8_t> knownLevels(const Picture& lost, int levels)
{
    const int width = lost.width(), height = lost.height();
    std::vector<std::uint8_t> result = doubtful(lost);
    const int largest = patchSide(levels - 1);
    std::vector<std::uint8_t> levelOfSide(std::size_t(largest) + 1);
    for (int level = 0; level < levels; ++level) {
        for (int side = patchSide(level); side <= largest; ++side) {
            levelOfSide[std::size_t(side)] = std::uint8_t(level + 1);
        }
    }
    // The side of the largest square that starts at each pixel, from the three pixels after it.
    std::vector<int> above(std::size_t(width) + 1), sides(std::size_t(width) + 1);
    for (int y = height - 1; y >= 0; --y) {
        std::uint8_t* row = result.data() + std::size_t(y) * std::size_t(width);
        for (auto x = std::size_t(width); x-- > 0;) {
            sides[x] = row[x] != 0 ? 0
                                   : std::min(largest,
                                              1 + std::min({sides[x + 1], above[x], above[x + 1]}));
            row[x] = levelOfSide[std::size_t(sides[x])];
        }
        sides.swap(above);
    }
    return result;
}

std::vector<OfxRectI> knownSquares(const std::vector<std::uint8_t>& known, int width, OfxRectI area,
                                   int largest, int count)
{
    const int size = std::max(area.x2 - area.x1, area.y2 - area.y1);
    const int everywhere = std::max(width, int(known.size() / std::size_t(width)));
    for (int side = std::clamp(size, 16, largest); side >= 8; side /= 2) {
        const SquareFinder finder(known, width, side);
        // Near the area, else further away.
        for (int reach = 3 * side / 2;; reach *= 2) {
            const std::vector<OfxRectI> all = finder.around(area, reach);
            const bool last = reach > everywhere;
            if (int(all.size()) >= std::min(count, 4) || (last && !all.empty())) {
                std::vector<OfxRectI> chosen;
                const std::size_t n = std::min(all.size(), std::size_t(count));
                for (std::size_t i = 0; i < n; ++i) chosen.push_back(all[i * all.size() / n]);
                return chosen;
            }
            if (last) break;
        }
    }
    return {};
}

}  // namespace Tesseret::Quality
