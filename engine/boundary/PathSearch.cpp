#include "engine/boundary/PathSearch.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <type_traits>

#include "engine/map/ExactMath.h"
#include "engine/map/MapRow.h"
#include "engine/map/PixelTraits.h"

namespace Orvane::Engine {
namespace {

/// In mask units at every depth, thus a larger share of M at float depth than at 8 bits.
constexpr float kWalkThreshold = 0.01f;

/// How many pixels longer a predecessor's path may be for the trace to follow it.
constexpr int kTraceSlack = 10;

/// More steps of length 1 than it takes to leave a pixel, unless the coordinates are so large that
/// floats cannot distinguish neighbours.
constexpr int kLeavingSteps = 8;

/// The neighbours by angle: entry k is at 45 degrees times k, x to the right and y down the rows.
constexpr std::array<PixelPoint, 8> kDirections{
    {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}}};

PixelPoint operator+(PixelPoint a, PixelPoint b)
{
    return {a.x + b.x, a.y + b.y};
}

PixelPoint pixelOf(const PixelVec2f& position)
{
    return {truncateToInt(position.x), truncateToInt(position.y)};
}

PixelVec2f positionOf(PixelPoint p)
{
    return {static_cast<float>(p.x), static_cast<float>(p.y)};
}

/// `v` scaled to length 1, or (0, 0) for a vector without length.
PixelVec2f normalised(const PixelVec2f& v)
{
    const float length = std::sqrt(v.x * v.x + v.y * v.y);
    if (!(length > 0.0f)) return {0.0f, 0.0f};
    return {v.x / length, v.y / length};
}

/// The direction along the band at a gradient, as an index into kDirections.
std::size_t octantOf(const PixelVec2f& g)
{
    // exact: the angle is rounded to a float and compared with float constants (odd multiples of pi
    // / 8).
    constexpr float kEighth = 0.3926991f;
    constexpr float kThreeEighths = 1.1780972f;
    constexpr float kFiveEighths = 1.9634955f;
    constexpr float kSevenEighths = 2.7488937f;
    const double angle = std::atan2(-static_cast<double>(g.x), static_cast<double>(g.y));
    const auto theta = static_cast<float>(angle);
    if (theta > kSevenEighths || theta <= -kSevenEighths) return 4;
    if (theta > kFiveEighths) return 3;
    if (theta > kThreeEighths) return 2;
    if (theta > kEighth) return 1;
    if (theta > -kEighth) return 0;
    if (theta > -kThreeEighths) return 7;
    if (theta > -kFiveEighths) return 6;
    return 5;
}

}  // namespace

bool PathCells::make(const MapDomain& map)
{
    x0_ = map.xAxis().origin + map.xAxis().storeStart;
    y0_ = map.yAxis().origin + map.yAxis().storeStart;
    width_ = map.xAxis().storeLength;
    height_ = map.yAxis().storeLength;
    const auto columns = static_cast<std::size_t>(width_);
    const auto rows = static_cast<std::size_t>(height_);
    block_ = allocateImageBlock(columns, rows, sizeof(PathCell));
    if (block_ == nullptr) return false;
    first_ = reinterpret_cast<PathCell*>(block_.get());
    std::uninitialized_fill_n(first_, columns * rows, PathCell{});
    return true;
}

PathCell* PathCells::find(PixelPoint p) const
{
    const std::int64_t column = std::int64_t{p.x} - x0_;
    const std::int64_t row = std::int64_t{p.y} - y0_;
    if (column < 0 || column >= width_ || row < 0 || row >= height_) return nullptr;
    return first_ + (row * width_ + column);
}

template <typename Pixel>
PathOutcome PathSearch<Pixel>::run(PixelPoint start)
{
    const PathOutcome outcome = search(start);
    cells_.release();
    return outcome;
}

template <typename Pixel>
PathOutcome PathSearch<Pixel>::search(PixelPoint start)
{
    cut_.clear();
    arrivals_.clear();
    path_.clear();
    if (!blockCells() || !cutBand(start)) return PathOutcome::NotReached;
    orientCut();
    advanceFront();
    const std::optional<PixelPoint> end = endPoint();
    if (!end) return PathOutcome::NotReached;
    return trace(*end) && closeLoop(*end) ? PathOutcome::Closed : PathOutcome::TraceFailed;
}

template <typename Pixel>
float PathSearch<Pixel>::pixelCost(PixelPoint p) const
{
    const Pixel a = in_.synthesised->read(p.x, p.y);
    const Pixel b = in_.source->read(p.x, p.y);
    using Channel = typename PixelTraits<Pixel>::Channel;
    if constexpr (std::is_integral_v<Channel>) {
        // exact: 64-bit integers, and a division that truncates.
        const auto square = [](std::int64_t d) { return d * d; };
        const std::int64_t sum = square(std::int64_t{a.r} - b.r) + square(std::int64_t{a.g} - b.g) +
                                 square(std::int64_t{a.b} - b.b);
        const std::int64_t mean = sum / 3;
        return static_cast<float>(mean);
    } else {
        // exact: float, one rounding for each operation, in the order R, G, B.
        const auto square = [](float d) { return d * d; };
        float sum = square(a.r - b.r);
        sum += square(a.g - b.g);
        sum += square(a.b - b.b);
        return sum * 0.33333334f;
    }
}

/// Makes the cells and blocks those off the band. False without memory for them.
template <typename Pixel>
bool PathSearch<Pixel>::blockCells()
{
    if (!cells_.make(*in_.band)) return false;
    for (int y = in_.work.y0; y < in_.work.y1; ++y) {
        const RowReader band(*in_.band, y);
        for (int x = in_.work.x0; x < in_.work.x1; ++x) {
            if (band[x] != 0.0f) continue;
            if (PathCell* cell = cells_.find({x, y})) cell->state = CellState::Blocked;
        }
    }
    return true;
}

/// Makes the cut from the band's outer edge to the fill region. False when a walk cannot end, as
/// where the band has no slope.
template <typename Pixel>
bool PathSearch<Pixel>::cutBand(PixelPoint start)
{
    const PixelVec2f d = normalised(gradientAt(start));
    if (d.x == 0.0f && d.y == 0.0f) return false;
    // A walk of more steps has left the region.
    const int maxSteps = 2 * (in_.work.x1 - in_.work.x0 + in_.work.y1 - in_.work.y0) + 2;
    PixelVec2f position = positionOf(start);
    int steps = 0;
    while (bandAt(pixelOf(position)) > kWalkThreshold) {
        if (++steps > maxSteps) return false;
        position = {position.x - d.x, position.y - d.y};
    }
    position = {position.x + d.x, position.y + d.y};
    for (steps = 0; bandAt(pixelOf(position)) > kWalkThreshold; ++steps) {
        if (steps > maxSteps) return false;
        const PixelPoint p = pixelOf(position);
        if (PathCell* cell = cells_.find(p)) {
            cut_.push_back(p);
            *cell = {pixelCost(p), 1, CellState::OnCut};
        }
        position = {position.x + d.x, position.y + d.y};
    }
    return true;
}

/// Separates the two sides of the cut: the search starts at one and ends at the other.
template <typename Pixel>
void PathSearch<Pixel>::orientCut()
{
    for (const PixelPoint p : cut_) {
        const PixelVec2f g = gradientAt(p);
        for (const PixelPoint o : kDirections) {
            PathCell* neighbour = cells_.find(p + o);
            if (neighbour == nullptr || neighbour->state != CellState::NotReached) continue;
            const float ahead = -g.y * static_cast<float>(o.x) + g.x * static_cast<float>(o.y);
            if (ahead >= 0.0f) neighbour->state = CellState::BesideCut;
        }
    }
    for (const PixelPoint p : cut_) {
        for (const PixelPoint o : kDirections) {
            PathCell* neighbour = cells_.find(p + o);
            if (neighbour == nullptr || neighbour->state != CellState::NotReached) continue;
            arrivals_.push_back(p + o);
            neighbour->state = CellState::BesideCut;
        }
    }
}

/// Moves the front round the region, breadth first, until it has nowhere to go.
template <typename Pixel>
void PathSearch<Pixel>::advanceFront()
{
    std::vector<PixelPoint> front = cut_;
    std::vector<PixelPoint> next;
    while (!front.empty()) {
        collectFront(front, next);
        for (const PixelPoint q : next) finalise(q);
        front.swap(next);
        next.clear();
    }
}

template <typename Pixel>
void PathSearch<Pixel>::collectFront(const std::vector<PixelPoint>& front,
                                     std::vector<PixelPoint>& next)
{
    for (const PixelPoint p : front) {
        for (const PixelPoint o : kDirections) {
            const PixelPoint q = p + o;
            PathCell* cell = cells_.find(q);
            if (cell == nullptr || !cell->mayBeReached()) continue;
            const auto before = predecessors(q);
            if (!std::ranges::any_of(before, [this](PixelPoint b) { return hasPath(b); })) continue;
            next.push_back(q);
            cell->state = CellState::Queued;
        }
    }
}

template <typename Pixel>
void PathSearch<Pixel>::finalise(PixelPoint q)
{
    const auto best = bestPredecessor(q, [](const PathCell& cell) { return cell.hasPath(); });
    if (!best) return;
    const PathCell& before = *cells_.find(*best);
    *cells_.find(q) = {pixelCost(q) + before.sum, before.count + 1, CellState::Reached};
}

/// The arrival cell of minimum mean cost; ties go to the first.
template <typename Pixel>
std::optional<PixelPoint> PathSearch<Pixel>::endPoint() const
{
    std::optional<PixelPoint> best;
    for (const PixelPoint p : arrivals_) {
        if (!hasPath(p)) continue;
        if (!best || cells_.find(p)->meanCost() < cells_.find(*best)->meanCost()) best = p;
    }
    return best;
}

/// Follows the minimum mean cost back from the end point to the cut. False at a dead end, and in a
/// cycle.
template <typename Pixel>
bool PathSearch<Pixel>::trace(PixelPoint end)
{
    const auto cells =
        static_cast<std::size_t>(cells_.width()) * static_cast<std::size_t>(cells_.height());
    path_.push_back(end);
    const PathCell* cell = cells_.find(end);
    while (cell->state != CellState::OnCut) {
        if (path_.size() > cells) return false;
        const int limit = cell->count + kTraceSlack;
        const auto next = bestPredecessor(path_.back(), [limit](const PathCell& before) {
            return before.hasPath() && before.count < limit;
        });
        if (!next) return false;
        path_.push_back(*next);
        cell = cells_.find(*next);
    }
    return true;
}

/// Walks from the trace's pixel on the cut straight to the end point.
template <typename Pixel>
bool PathSearch<Pixel>::closeLoop(PixelPoint end)
{
    const int maxSteps = 4 * (cells_.width() + cells_.height());
    PixelPoint s = path_.back();
    for (int steps = 0; s != end; ++steps) {
        if (steps > maxSteps) return false;
        const PixelVec2f u = normalised({static_cast<float>(end.x) - static_cast<float>(s.x),
                                         static_cast<float>(end.y) - static_cast<float>(s.y)});
        PixelVec2f position = positionOf(s);
        PixelPoint pixel = s;
        for (int tries = 0; pixel == s; ++tries) {
            if (tries == kLeavingSteps) return false;
            position = {position.x + u.x, position.y + u.y};
            pixel = pixelOf(position);
        }
        path_.push_back(pixel);
        s = pixel;
    }
    return true;
}

/// Whether a path ends at a pixel; a pixel without a cell is blocked.
template <typename Pixel>
bool PathSearch<Pixel>::hasPath(PixelPoint p) const
{
    const PathCell* cell = cells_.find(p);
    return cell != nullptr && cell->hasPath();
}

template <typename Pixel>
std::array<PixelPoint, 3> PathSearch<Pixel>::predecessors(PixelPoint q) const
{
    const std::size_t k = octantOf(gradientAt(q));
    return {q + kDirections[(k + 7) % 8], q + kDirections[k], q + kDirections[(k + 1) % 8]};
}

/// The accepted predecessor of minimum mean cost; ties go to the first.
template <typename Pixel>
template <typename Accept>
std::optional<PixelPoint> PathSearch<Pixel>::bestPredecessor(PixelPoint q,
                                                             const Accept& accept) const
{
    std::optional<PixelPoint> best;
    float bestMean = 0.0f;
    for (const PixelPoint p : predecessors(q)) {
        const PathCell* cell = cells_.find(p);
        if (cell == nullptr || !accept(*cell)) continue;
        const float mean = cell->meanCost();
        if (best && !(mean < bestMean)) continue;
        best = p;
        bestMean = mean;
    }
    return best;
}

template class PathSearch<PixelRGBA8>;
template class PathSearch<PixelRGBA16>;
template class PathSearch<PixelRGBAf>;

}  // namespace Orvane::Engine
