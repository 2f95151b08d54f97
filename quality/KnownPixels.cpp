#include "quality/KnownPixels.h"

#include <algorithm>
#include <cstdlib>

#include "quality/PatchPyramid.h"
#include "quality/PixelSums.h"

namespace Tesseret::Quality {
namespace {

/// 1 for lost pixels and their surroundings.
std::vector<std::uint8_t> doubtful(const Picture& lost)
{
    const auto width = std::size_t(lost.width()), height = std::size_t(lost.height());
    std::vector<std::uint8_t> wide(width * height), result(width * height);
    for (std::size_t y = 0; y < height; ++y) {
        const std::uint8_t* row =
            reinterpret_cast<const std::uint8_t*>(lost.row(lost.bounds().y1 + int(y)));
        std::uint8_t* to = wide.data() + y * width;
        for (std::size_t x = 0; x < width; ++x) {
            if (row[x] == 0) continue;
            const std::size_t last = std::min(x + kDoubtful, width - 1);
            for (std::size_t i = x < kDoubtful ? 0 : x - kDoubtful; i <= last; ++i) to[i] = 1;
        }
    }
    for (std::size_t y = 0; y < height; ++y) {
        std::uint8_t* to = result.data() + y * width;
        const std::size_t last = std::min(y + kDoubtful, height - 1);
        for (std::size_t i = y < kDoubtful ? 0 : y - kDoubtful; i <= last; ++i) {
            const std::uint8_t* from = wide.data() + i * width;
            for (std::size_t x = 0; x < width; ++x) to[x] |= from[x];
        }
    }
    return result;
}

/// Squares of this side on a grid round the area, in the order of their angles.
std::vector<OfxRectI> squaresAround(const PixelSums& gone, OfxRectI area, int side, int reach)
{
    std::vector<OfxRectI> found;
    const int room = side + 2 * kDoubtful;
    // Twice as fine as the squares: more of them fit between mattes.
    for (int y = area.y1 - reach; y < area.y2 + reach; y += room / 2) {
        for (int x = area.x1 - reach; x < area.x2 + reach; x += room / 2) {
            if (x < 0 || y < 0 || x + room > gone.width() || y + room > gone.height()) continue;
            if (gone.sum(x, y, x + room, y + room) != 0) continue;
            const bool free = std::none_of(found.begin(), found.end(), [&](const OfxRectI& other) {
                return std::abs(other.x1 - kDoubtful - x) < room &&
                       std::abs(other.y1 - kDoubtful - y) < room;
            });
            if (free) {
                found.push_back(
                    {x + kDoubtful, y + kDoubtful, x + kDoubtful + side, y + kDoubtful + side});
            }
        }
    }
    return found;
}

}  // namespace

std::vector<std::uint8_t> knownLevels(const Picture& lost, int levels)
{
    return unmarkedLevels(doubtful(lost), lost.width(), lost.height(), levels);
}

std::vector<std::uint8_t> unmarkedLevels(std::vector<std::uint8_t> result, int width, int height,
                                         int levels)
{
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

std::vector<OfxRectI> knownSquares(const Picture& lost, OfxRectI area, int largest, int count)
{
    const PixelSums gone(lost);
    const int size = std::max(area.x2 - area.x1, area.y2 - area.y1);
    const int everywhere = std::max(gone.width(), gone.height());
    for (int side = std::clamp(size, 16, largest); side >= 8; side /= 2) {
        // Near the area, else further away.
        for (int reach = 3 * side / 2;; reach *= 2) {
            std::vector<OfxRectI> all = squaresAround(gone, area, side, reach);
            if (int(all.size()) >= std::min(count, 4) || (reach > everywhere && !all.empty())) {
                std::vector<OfxRectI> chosen;
                const std::size_t n = std::min(all.size(), std::size_t(count));
                for (std::size_t i = 0; i < n; ++i) chosen.push_back(all[i * all.size() / n]);
                return chosen;
            }
            if (reach > everywhere) break;
        }
    }
    return {};
}

}  // namespace Tesseret::Quality
