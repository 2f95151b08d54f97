#pragma once

#include <array>
#include <optional>
#include <vector>

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
    /// One pixel's state: the cost of the best path that ends here and its number of pixels. The
    /// count also says where the search stands, in the constants below; 1 or more is final.
    using Cell = PixelVec2f;

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
    Cell* cell(PixelPoint p) { return cells_.translate(p.x, p.y); }
    float count(PixelPoint p) const;
    float mean(PixelPoint p) const;
    std::array<PixelPoint, 3> predecessors(PixelPoint q) const;
    template <typename Accept>
    std::optional<PixelPoint> bestPredecessor(PixelPoint q, const Accept& accept) const;

    PathSearchInputs<Pixel> in_;
    mutable Map<Cell> cells_;
    std::vector<PixelPoint> cut_, arrivals_, path_;
};

}  // namespace Orvane::Engine
