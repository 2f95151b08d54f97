#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "engine/map/ImageBlock.h"
#include "engine/map/Map.h"
#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// What a search reads. Pixels outside a map read as its fill value.
template <typename Pixel>
struct PathSearchInputs {
    Region work;                                ///< the rectangle searched
    const Map<Pixel32f>* band = nullptr;        ///< positive where the path may run, 0 elsewhere
    const Map<PixelVec2f>* gradient = nullptr;  ///< points towards the fill region
    const Map<Pixel>* synthesised = nullptr;    ///< the picture inside the path
    const Map<Pixel>* source = nullptr;         ///< the picture outside of it
};

enum class PathOutcome {
    Closed,      ///< `path` is a closed 8-connected loop
    NotReached,  ///< the front never came round to the other side of the cut
    TraceFailed  ///< the way back to the cut could not be followed
};

/// How far the search has come at a pixel.
enum class CellState : std::uint8_t {
    NotReached,
    BesideCut,  ///< next to the cut; may still be reached
    Queued,     ///< in the front being processed, or without a way on from there
    Blocked,    ///< off the band
    OnCut,      ///< where every path starts
    Reached,
};

/// One pixel of a search and, once it has one, the best path that ends there.
struct PathCell {
    float sum = 0.0f;  ///< the costs of the path's pixels
    int count = 0;     ///< how many those are
    CellState state = CellState::NotReached;

    bool mayBeReached() const
    {
        return state == CellState::NotReached || state == CellState::BesideCut;
    }
    bool hasPath() const { return state == CellState::OnCut || state == CellState::Reached; }
    float meanCost() const { return sum / static_cast<float>(count); }
};

/// The cells of a rectangle, in image memory.
class PathCells {
public:
    /// Makes new cells where a map has pixels. False without memory for them.
    bool make(const MapDomain& map);
    void release() { block_.reset(); }

    int width() const { return width_; }
    int height() const { return height_; }
    /// The cell of a pixel in absolute coordinates, or null where there is none.
    PathCell* find(PixelPoint p) const;

private:
    ImageBlock block_;
    PathCell* first_ = nullptr;
    int x0_ = 0, y0_ = 0, width_ = 0, height_ = 0;
};

/// Finds the closed path through a band along which two pictures differ least. The band is cut from
/// its outer edge to the fill region; a front then walks round the region, one way, from one side
/// of the cut to the other, and every pixel keeps the predecessor of least mean cost.
template <typename Pixel>
class PathSearch {
public:
    explicit PathSearch(const PathSearchInputs<Pixel>& inputs) : in_(inputs) {}

    /// Searches from a cut through `start`, a pixel of the band.
    PathOutcome run(PixelPoint start);

    /// The loop in the order traced: from the end point back to the cut, and along it to the end
    /// point.
    const std::vector<PixelPoint>& path() const { return path_; }

    /// The mean over R, G and B of the squared difference of the two pictures, in their own range;
    /// exact whole numbers at 8 and 16 bits, fractions of the mean dropped.
    float pixelCost(PixelPoint p) const;

private:
    PathOutcome search(PixelPoint start);
    bool blockCells();
    bool cutBand(PixelPoint start);
    void orientCut();
    void advanceFront();
    void collectFront(const std::vector<PixelPoint>& front, std::vector<PixelPoint>& next);
    void finalise(PixelPoint q);
    std::optional<PixelPoint> endPoint() const;
    bool trace(PixelPoint end);
    bool closeLoop(PixelPoint end);

    float bandAt(PixelPoint p) const { return in_.band->read(p.x, p.y); }
    PixelVec2f gradientAt(PixelPoint p) const { return in_.gradient->read(p.x, p.y); }
    bool hasPath(PixelPoint p) const;
    std::array<PixelPoint, 3> predecessors(PixelPoint q) const;
    template <typename Accept>
    std::optional<PixelPoint> bestPredecessor(PixelPoint q, const Accept& accept) const;

    PathSearchInputs<Pixel> in_;
    PathCells cells_;
    std::vector<PixelPoint> cut_, arrivals_, path_;
};

}  // namespace Orvane::Engine
