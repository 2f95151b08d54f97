#include "engine/boundary/PathSearch.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <type_traits>

#include "engine/boundary/Octant.h"
#include "engine/map/ExactMath.h"
#include "engine/map/MapRow.h"
#include "engine/map/PixelTraits.h"
#include "engine/pass/SharedWork.h"

namespace Orvane::Engine {
namespace {

/// In mask units at every depth, thus a larger share of M at float depth than at 8 bits.
constexpr float kWalkThreshold = 0.01f;

/// How many pixels longer a predecessor's path may be for the trace to follow it.
constexpr int kTraceSlack = 10;

/// More steps of length 1 than it takes to leave a pixel, unless the coordinates are so large that
/// floats cannot distinguish neighbours.
constexpr int kLeavingSteps = 8;

/// Pixels that the front moves over between two polls for an abort; a few milliseconds.
constexpr std::size_t kPixelsBetweenPolls = 1 << 15;

/// Rows of cells that a worker fills at once.
constexpr int kTaskRows = 32;

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

}  // namespace

bool PathCells::make(const MapDomain& map)
{
    region_ = map.storedExtent();
    stride_ = std::ptrdiff_t{width()} + 2;
    const auto columns = static_cast<std::size_t>(stride_);
    const auto rows = static_cast<std::size_t>(height()) + 2;
    stateBlock_ = allocateImageBlock(columns, rows, sizeof(CellState));
    octantBlock_ = allocateImageBlock(columns, rows, sizeof(std::uint8_t));
    costBlock_ = allocateImageBlock(columns, rows, sizeof(PathCost));
    if (stateBlock_ == nullptr || octantBlock_ == nullptr || costBlock_ == nullptr) return false;
    states_ = reinterpret_cast<CellState*>(stateBlock_.get());
    std::uninitialized_fill_n(rowAt(region_.y0 - 1), columns, CellState::Blocked);
    std::uninitialized_fill_n(rowAt(region_.y1), columns, CellState::Blocked);
    octants_ = reinterpret_cast<std::uint8_t*>(octantBlock_.get());
    costs_ = reinterpret_cast<PathCost*>(costBlock_.get());
    return true;
}

void PathCells::release()
{
    stateBlock_.reset();
    octantBlock_.reset();
    costBlock_.reset();
}

CellState* PathCells::find(PixelPoint p) const
{
    if (p.x < region_.x0 || p.x >= region_.x1 || p.y < region_.y0 || p.y >= region_.y1) {
        return nullptr;
    }
    return rowAt(p.y) + (std::ptrdiff_t{p.x} - region_.x0 + 1);
}

PixelPoint PathCells::placeOf(const CellState* cell) const
{
    const std::ptrdiff_t index = cell - states_;
    return {region_.x0 + static_cast<int>(index % stride_) - 1,
            region_.y0 + static_cast<int>(index / stride_) - 1};
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
    if (!makeCells() || !cutBand(start)) return PathOutcome::NotReached;
    orientCut();
    advanceFront();
    const std::optional<PixelPoint> end = endPoint();
    if (!end) return PathOutcome::NotReached;
    return trace(*end) && closeLoop(*end) ? PathOutcome::Closed : PathOutcome::TraceFailed;
}

template <typename Pixel>
float PathSearch<Pixel>::pixelCost(PixelPoint p) const
{
    const Pixel a = synthesised_(p.x, p.y);
    const Pixel b = source_(p.x, p.y);
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

/// Makes the cells. False without memory for them, and after an abort.
template <typename Pixel>
bool PathSearch<Pixel>::makeCells()
{
    if (!cells_.make(*in_.band)) return false;
    std::ranges::transform(kDirections, neighbours_.begin(),
                           [this](PixelPoint o) { return cells_.distanceTo(o); });
    const Region& region = cells_.region();
    SharedWork work(in_.statusRecord);
    return work.run((cells_.height() + kTaskRows - 1) / kTaskRows, [&](int task, int) {
        const int begin = region.y0 + task * kTaskRows;
        for (int y = begin; y < std::min(begin + kTaskRows, region.y1); ++y) fillCells(y);
    });
}

/// Blocks the cells of a row that are off the band. The others get what does not depend on the
/// search, since that is work for all threads.
template <typename Pixel>
void PathSearch<Pixel>::fillCells(int y)
{
    const Region& region = cells_.region();
    CellState* cell = cells_.rowAt(y);
    *cell++ = CellState::Blocked;
    // Usually all of them are in place. Outside the work region the band is not read.
    const float* band = RowReader(*in_.band, y).span(region.x0, cells_.width());
    const bool isInWork = y >= in_.work.y0 && y < in_.work.y1;
    for (int x = region.x0; x < region.x1; ++x, ++cell) {
        const bool mayBeOff = isInWork && x >= in_.work.x0 && x < in_.work.x1;
        const bool isOff =
            mayBeOff && (band != nullptr ? band[x - region.x0] : bandAt({x, y})) == 0.0f;
        *cell = isOff ? CellState::Blocked : CellState::NotReached;
        if (isOff) continue;
        cells_.octantAt(cell) = static_cast<std::uint8_t>(octantOf(gradientAt({x, y})));
        cells_.costOf(cell).sum = pixelCost({x, y});
    }
    *cell = CellState::Blocked;
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
        if (CellState* cell = cells_.find(p)) {
            cut_.push_back(p);
            *cell = CellState::OnCut;
            cells_.costOf(cell) = PathCost::of(pixelCost(p), 1);
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
            CellState* neighbour = cells_.find(p + o);
            if (neighbour == nullptr || *neighbour != CellState::NotReached) continue;
            const float ahead = -g.y * static_cast<float>(o.x) + g.x * static_cast<float>(o.y);
            if (ahead >= 0.0f) *neighbour = CellState::BesideCut;
        }
    }
    for (const PixelPoint p : cut_) {
        for (const PixelPoint o : kDirections) {
            CellState* neighbour = cells_.find(p + o);
            if (neighbour == nullptr || *neighbour != CellState::NotReached) continue;
            arrivals_.push_back(p + o);
            *neighbour = CellState::BesideCut;
        }
    }
}

/// Moves the front round the region, breadth first, until it has nowhere to go.
template <typename Pixel>
void PathSearch<Pixel>::advanceFront()
{
    std::vector<CellState*> front, next;
    for (const PixelPoint p : cut_) front.push_back(cells_.find(p));
    std::size_t moved = 0;
    while (!front.empty()) {
        moved += front.size();
        if (moved > kPixelsBetweenPolls) {
            moved = 0;
            if (in_.statusRecord != nullptr && in_.statusRecord->pollAbort()) return;
        }
        collectFront(front, next);
        for (CellState* cell : next) finalise(cell);
        front.swap(next);
        next.clear();
    }
}

template <typename Pixel>
void PathSearch<Pixel>::collectFront(const std::vector<CellState*>& front,
                                     std::vector<CellState*>& next)
{
    for (CellState* const cell : front) {
        for (const std::ptrdiff_t distance : neighbours_) {
            CellState* const neighbour = cell + distance;
            if (!mayBeReached(*neighbour)) continue;
            if (!hasPath(*predecessor(neighbour, 0)) && !hasPath(*predecessor(neighbour, 1)) &&
                !hasPath(*predecessor(neighbour, 2))) {
                continue;
            }
            next.push_back(neighbour);
            *neighbour = CellState::Queued;
        }
    }
}

template <typename Pixel>
void PathSearch<Pixel>::finalise(CellState* cell)
{
    const CellState* best = bestPredecessor(cell, [](const PathCost&) { return true; });
    if (best == nullptr) return;
    const PathCost& before = cells_.costOf(best);
    PathCost& cost = cells_.costOf(cell);
    cost = PathCost::of(cost.sum + before.sum, before.count + 1);
    *cell = CellState::Reached;
}

/// The arrival cell of minimum mean cost; ties go to the first.
template <typename Pixel>
std::optional<PixelPoint> PathSearch<Pixel>::endPoint() const
{
    std::optional<PixelPoint> best;
    for (const PixelPoint p : arrivals_) {
        if (!pathEndsAt(p)) continue;
        if (!best || meanAt(p) < meanAt(*best)) best = p;
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
    const CellState* cell = cells_.find(end);
    while (*cell != CellState::OnCut) {
        if (path_.size() > cells) return false;
        const int limit = cells_.costOf(cell).count + kTraceSlack;
        cell =
            bestPredecessor(cell, [limit](const PathCost& before) { return before.count < limit; });
        if (cell == nullptr) return false;
        path_.push_back(cells_.placeOf(cell));
    }
    return true;
}

/// Walks from the trace's pixel on the cut straight to the end point.
template <typename Pixel>
bool PathSearch<Pixel>::closeLoop(PixelPoint end)
{
    const int maxSteps = 4 * (in_.band->width() + in_.band->height());
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
bool PathSearch<Pixel>::pathEndsAt(PixelPoint p) const
{
    const CellState* cell = cells_.find(p);
    return cell != nullptr && hasPath(*cell);
}

/// The cells before one, i below 3: in the direction along the band, and next to that.
template <typename Pixel>
const CellState* PathSearch<Pixel>::predecessor(const CellState* cell, std::size_t i) const
{
    return cell + neighbours_[(cells_.octantAt(cell) + 7 + i) % 8];
}

/// The predecessor of minimum mean cost among those with an accepted path, or null; ties go to the
/// first.
template <typename Pixel>
template <typename Accept>
const CellState* PathSearch<Pixel>::bestPredecessor(const CellState* cell,
                                                    const Accept& accept) const
{
    const CellState* best = nullptr;
    float bestMean = 0.0f;
    for (std::size_t i = 0; i < 3; ++i) {
        const CellState* before = predecessor(cell, i);
        if (!hasPath(*before)) continue;
        const PathCost& cost = cells_.costOf(before);
        if (!accept(cost)) continue;
        const float mean = cost.mean;
        if (best && !(mean < bestMean)) continue;
        best = before;
        bestMean = mean;
    }
    return best;
}

template class PathSearch<PixelRGBA8>;
template class PathSearch<PixelRGBA16>;
template class PathSearch<PixelRGBAf>;

}  // namespace Orvane::Engine
