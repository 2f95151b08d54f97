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
    const auto columns = static_cast<std::size_t>(width());
    const auto rows = static_cast<std::size_t>(height());
    stateBlock_ = allocateImageBlock(columns, rows, sizeof(CellState));
    octantBlock_ = allocateImageBlock(columns, rows, sizeof(std::uint8_t));
    costBlock_ = allocateImageBlock(columns, rows, sizeof(PathCost));
    if (stateBlock_ == nullptr || octantBlock_ == nullptr || costBlock_ == nullptr) return false;
    states_ = reinterpret_cast<CellState*>(stateBlock_.get());
    std::uninitialized_fill_n(states_, columns * rows, CellState::NotReached);
    octants_ = reinterpret_cast<std::uint8_t*>(octantBlock_.get());
    std::uninitialized_fill_n(octants_, columns * rows, kUnknown);
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
    const std::ptrdiff_t row = std::ptrdiff_t{p.y} - region_.y0;
    return states_ + row * width() + (std::ptrdiff_t{p.x} - region_.x0);
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

/// Makes the cells and blocks those off the band. False without memory for them.
template <typename Pixel>
bool PathSearch<Pixel>::blockCells()
{
    if (!cells_.make(*in_.band)) return false;
    const Region part = in_.work.within(in_.band->storedExtent());
    for (int y = part.y0; y < part.y1; ++y) {
        const RowReader band(*in_.band, y);
        CellState* const cells = cells_.find({part.x0, y});
        const int count = part.x1 - part.x0;
        const auto stateOf = [](float value) {
            return value == 0.0f ? CellState::Blocked : CellState::NotReached;
        };
        if (const float* values = band.span(part.x0, count)) {
            std::transform(values, values + count, cells, stateOf);
        } else {
            for (int i = 0; i < count; ++i) cells[i] = stateOf(band[part.x0 + i]);
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
    std::vector<PixelPoint> front = cut_;
    std::vector<PixelPoint> next;
    std::size_t moved = 0;
    while (!front.empty()) {
        moved += front.size();
        if (moved > kPixelsBetweenPolls) {
            moved = 0;
            if (in_.statusRecord != nullptr && in_.statusRecord->pollAbort()) return;
        }
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
            CellState* cell = cells_.find(q);
            if (cell == nullptr || !mayBeReached(*cell)) continue;
            const auto before = predecessors(q);
            if (!std::ranges::any_of(before, [this](PixelPoint b) { return pathEndsAt(b); })) {
                continue;
            }
            next.push_back(q);
            *cell = CellState::Queued;
        }
    }
}

template <typename Pixel>
void PathSearch<Pixel>::finalise(PixelPoint q)
{
    const auto best = bestPredecessor(q, [](const PathCost&) { return true; });
    if (!best) return;
    const PathCost& before = cells_.costOf(cells_.find(*best));
    CellState* cell = cells_.find(q);
    cells_.costOf(cell) = PathCost::of(pixelCost(q) + before.sum, before.count + 1);
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
        const auto next = bestPredecessor(
            path_.back(), [limit](const PathCost& before) { return before.count < limit; });
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

/// The pixels before one that has a cell.
template <typename Pixel>
std::array<PixelPoint, 3> PathSearch<Pixel>::predecessors(PixelPoint q) const
{
    std::uint8_t& octant = cells_.octantAt(cells_.find(q));
    if (octant == PathCells::kUnknown) octant = static_cast<std::uint8_t>(octantOf(gradientAt(q)));
    const std::size_t k = octant;
    return {q + kDirections[(k + 7) % 8], q + kDirections[k], q + kDirections[(k + 1) % 8]};
}

/// The predecessor of minimum mean cost among those with an accepted path; ties go to the first.
template <typename Pixel>
template <typename Accept>
std::optional<PixelPoint> PathSearch<Pixel>::bestPredecessor(PixelPoint q,
                                                             const Accept& accept) const
{
    std::optional<PixelPoint> best;
    float bestMean = 0.0f;
    for (const PixelPoint p : predecessors(q)) {
        const CellState* cell = cells_.find(p);
        if (cell == nullptr || !hasPath(*cell)) continue;
        const PathCost& cost = cells_.costOf(cell);
        if (!accept(cost)) continue;
        const float mean = cost.mean;
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
