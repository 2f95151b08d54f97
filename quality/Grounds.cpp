#include "quality/Grounds.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace Tesseret::Quality {
namespace {

/// A ground takes at least this share of the cells.
constexpr double kLeastShare = 0.15;
/// A straight line leaves at most this share on the wrong side.
constexpr double kMistaken = 0.12;
/// In spreads of one ground.
constexpr double kApart = 2.0;
/// At most this share looks like neither: with more, one ground changes slowly.
constexpr double kBetween = 0.12;
/// Differences in tones that mean nothing.
constexpr double kFloor = 8;
/// Directions in a quarter turn.
constexpr int kDirections = 9;

CellLook meanLook(const std::vector<PlacedLook>& cells, const std::vector<int>& ground, int which)
{
    CellLook mean;
    float count = 0;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (ground[i] != which) continue;
        for (std::size_t c = 0; c < 3; ++c) {
            mean.colour[c] += cells[i].look.colour[c];
            mean.change[c] += cells[i].look.change[c];
        }
        ++count;
    }
    for (std::size_t c = 0; c < 3 && count > 0; ++c) {
        mean.colour[c] /= count;
        mean.change[c] /= count;
    }
    return mean;
}

/// The cell that looks least like another.
std::size_t farthest(const std::vector<PlacedLook>& cells, const CellLook& from)
{
    std::size_t best = 0;
    for (std::size_t i = 1; i < cells.size(); ++i) {
        if (unlikeness(cells[i].look, from) > unlikeness(cells[best].look, from)) best = i;
    }
    return best;
}

/// Lloyd's iteration from the two cells that differ most, nearly.
std::vector<int> twoClusters(const std::vector<PlacedLook>& cells, std::array<CellLook, 2>& means)
{
    std::vector<int> ground(cells.size());
    means[0] = cells[farthest(cells, meanLook(cells, ground, 0))].look;
    means[1] = cells[farthest(cells, means[0])].look;
    for (int round = 0; round < 12; ++round) {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            ground[i] =
                unlikeness(cells[i].look, means[1]) < unlikeness(cells[i].look, means[0]) ? 1 : 0;
        }
        means = {meanLook(cells, ground, 0), meanLook(cells, ground, 1)};
    }
    return ground;
}

/// The share of cells that look neither like one mean nor like the other.
double shareBetween(const std::vector<PlacedLook>& cells, const std::array<CellLook, 2>& means)
{
    int between = 0;
    for (const PlacedLook& cell : cells) {
        const float first = unlikeness(cell.look, means[0]);
        const float second = unlikeness(cell.look, means[1]);
        // The difference of the squares is linear from one mean to the other.
        const float along = (first - second) / std::max(unlikeness(means[0], means[1]), 1.0f);
        if (std::abs(along) < 0.35f) ++between;
    }
    return double(between) / double(cells.size());
}

/// The line with the fewest cells on the wrong side.
TwoGrounds bestLine(const std::vector<PlacedLook>& cells, const std::vector<int>& ground)
{
    TwoGrounds best;
    best.mistaken = 1;
    std::vector<std::pair<double, int>> along(cells.size());
    const auto seconds = std::count(ground.begin(), ground.end(), 1);
    for (int direction = 0; direction < 4 * kDirections; ++direction) {
        // By the tangent of half the angle: sines would not be the same on every machine.
        const double t = double(direction % kDirections) / kDirections;
        double x = (1 - t * t) / (1 + t * t), y = 2 * t / (1 + t * t);
        for (int turn = 0; turn < direction / kDirections; ++turn) {
            std::swap(x, y);
            x = -x;
        }
        for (std::size_t i = 0; i < cells.size(); ++i) {
            along[i] = {cells[i].x * x + cells[i].y * y, ground[i]};
        }
        std::sort(along.begin(), along.end());
        // Everything is of the second ground first, then more and more of the first.
        auto wrong = std::ptrdiff_t(cells.size()) - seconds;
        for (std::size_t i = 0; i + 1 < along.size(); ++i) {
            wrong += along[i].second == 0 ? -1 : 1;
            const double share = double(wrong) / double(cells.size());
            if (share >= best.mistaken) continue;
            best.mistaken = share;
            best.normalX = x;
            best.normalY = y;
            best.offset = (along[i].first + along[i + 1].first) / 2;
        }
    }
    return best;
}

/// For each cell of `of`, how unlike the most similar one of `to` is: the mean, in tones. Cells
/// within `apart` pixels of it are left out.
double meanDistance(const std::vector<PlacedLook>& of, const std::vector<PlacedLook>& to,
                    double apart)
{
    double sum = 0;
    int count = 0;
    for (const PlacedLook& cell : of) {
        float least = std::numeric_limits<float>::max();
        for (const PlacedLook& other : to) {
            if (std::max(std::abs(cell.x - other.x), std::abs(cell.y - other.y)) < apart) continue;
            least = std::min(least, unlikeness(cell.look, other.look));
        }
        if (least == std::numeric_limits<float>::max()) continue;
        sum += std::sqrt(double(least));
        ++count;
    }
    return count > 0 ? sum / count : 0;
}

}  // namespace

std::optional<TwoGrounds> divide(const std::vector<PlacedLook>& cells)
{
    if (cells.size() < 16) return std::nullopt;
    std::array<CellLook, 2> means;
    const std::vector<int> ground = twoClusters(cells, means);
    const double share = double(std::count(ground.begin(), ground.end(), 1)) / double(cells.size());
    if (std::min(share, 1 - share) < kLeastShare) return std::nullopt;
    if (shareBetween(cells, means) > kBetween) return std::nullopt;
    double spread = 0;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        spread += double(unlikeness(cells[i].look, means[std::size_t(ground[i])]));
    }
    spread = std::sqrt(spread / double(cells.size())) + kFloor;
    TwoGrounds line = bestLine(cells, ground);
    line.apart = std::sqrt(double(unlikeness(means[0], means[1]))) / spread;
    if (line.apart < kApart || line.mistaken > kMistaken) return std::nullopt;
    return line;
}

double usualUnlikeness(const std::vector<PlacedLook>& cells)
{
    return meanDistance(cells, cells, 3 * kCell);
}

double alike(const std::vector<PlacedLook>& here, const std::vector<PlacedLook>& there,
             double usual)
{
    if (here.empty() || there.empty()) return 0;
    const double both = meanDistance(here, there, 0) + meanDistance(there, here, 0);
    return std::min(2 * (usual + kFloor) / (both + 2 * kFloor), 1.0);
}

}  // namespace Tesseret::Quality
