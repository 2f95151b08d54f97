#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "engine/map/ImageBlock.h"
#include "engine/map/Map.h"
#include "engine/map/PointReader.h"
#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// The inputs of a search. Pixels outside a map read as its fill value.
template <typename Pixel>
struct PathSearchInputs {
    Region work;                                ///< the rectangle searched
    const Map<Pixel32f>* band = nullptr;        ///< positive where the path may run, 0 elsewhere
    const Map<PixelVec2f>* gradient = nullptr;  ///< points into the fill region
    const Map<Pixel>* synthesised = nullptr;    ///< the image inside the path
    const Map<Pixel>* source = nullptr;         ///< the image outside of it
    RenderStatus* statusRecord = nullptr;       ///< polled for an abort; may be null
};

enum class PathOutcome {
    Closed,      ///< `path` is a closed 8-connected loop
    NotReached,  ///< the front did not reach the other side of the cut
    TraceFailed  ///< the trace did not reach the cut
};

/// The state of the search at a pixel.
enum class CellState : std::uint8_t {
    NotReached,
    BesideCut,  ///< next to the cut; may still be reached
    Queued,     ///< in the next front
    Blocked,    ///< off the band
    OnCut,      ///< the start of every path
    Reached,
};

/// The best path that ends at a pixel.
struct PathCost {
    float sum = 0.0f;   ///< the costs of the path's pixels; before there is one, the pixel's own
    int count = 0;      ///< of the path's pixels
    float mean = 0.0f;  ///< the sum divided by the count

    static PathCost of(float sum, int count)
    {
        return {sum, count, sum / static_cast<float>(count)};
    }
};

inline bool mayBeReached(CellState state)
{
    return state == CellState::NotReached || state == CellState::BesideCut;
}
/// Only such a cell has a cost.
inline bool hasPath(CellState state)
{
    return state == CellState::OnCut || state == CellState::Reached;
}

/// The cells of a rectangle, one for each pixel, with blocked ones around it, in image memory.
/// Their parts are stored apart: of the octants and costs only those along the band are ever
/// touched.
class PathCells {
public:
    /// Makes cells where a map has pixels, contents undefined but for the rows around them. False
    /// without memory for them.
    bool make(const MapDomain& map);
    void release();

    const Region& region() const { return region_; }
    int width() const { return region_.x1 - region_.x0; }
    int height() const { return region_.y1 - region_.y0; }
    /// The cell of a pixel in absolute coordinates, or null.
    CellState* find(PixelPoint p) const;
    /// The row of cells at y, from the blocked one before the first pixel's on; it is followed by
    /// one behind the last.
    CellState* rowAt(int y) const
    {
        return states_ + (std::ptrdiff_t{y} - region_.y0 + 1) * stride_;
    }
    /// The pixel of a cell.
    PixelPoint placeOf(const CellState* cell) const;
    /// How far the cell of a neighbour is from that of a pixel.
    std::ptrdiff_t distanceTo(PixelPoint direction) const
    {
        return direction.y * stride_ + direction.x;
    }
    PathCost& costOf(const CellState* cell) const { return costs_[cell - states_]; }
    /// The octant of the gradient at a cell.
    std::uint8_t& octantAt(const CellState* cell) const { return octants_[cell - states_]; }

private:
    Region region_;
    std::ptrdiff_t stride_ = 0;
    ImageBlock stateBlock_, octantBlock_, costBlock_;
    CellState* states_ = nullptr;
    std::uint8_t* octants_ = nullptr;
    PathCost* costs_ = nullptr;
};

/// Finds the closed path through a band along which two images differ least. The band is cut from
/// its outer edge to the fill region; a front then moves round the region in one direction, from
/// one side of the cut to the other, and every pixel takes the predecessor of minimum mean cost.
template <typename Pixel>
class PathSearch {
public:
    explicit PathSearch(const PathSearchInputs<Pixel>& inputs)
        : in_(inputs),
          band_(*inputs.band),
          gradient_(*inputs.gradient),
          synthesised_(*inputs.synthesised),
          source_(*inputs.source)
    {}

    /// Searches from a cut through `start`, a pixel of the band.
    PathOutcome run(PixelPoint start);

    /// The loop in the order traced: from the end point back to the cut, and along it to the end
    /// point.
    const std::vector<PixelPoint>& path() const { return path_; }

    /// The mean over R, G and B of the squared difference of the two images, in their own range; a
    /// truncated integer at 8 and 16 bits.
    float pixelCost(PixelPoint p) const;

private:
    PathOutcome search(PixelPoint start);
    bool makeCells();
    void fillCells(int y);
    bool cutBand(PixelPoint start);
    void orientCut();
    void advanceFront();
    void collectFront(const std::vector<CellState*>& front, std::vector<CellState*>& next);
    void finalise(CellState* cell);
    std::optional<PixelPoint> endPoint() const;
    bool trace(PixelPoint end);
    bool closeLoop(PixelPoint end);

    float bandAt(PixelPoint p) const { return band_(p.x, p.y); }
    PixelVec2f gradientAt(PixelPoint p) const { return gradient_(p.x, p.y); }
    bool pathEndsAt(PixelPoint p) const;
    float meanAt(PixelPoint p) const { return cells_.costOf(cells_.find(p)).mean; }
    const CellState* predecessor(const CellState* cell, std::size_t i) const;
    template <typename Accept>
    const CellState* bestPredecessor(const CellState* cell, const Accept& accept) const;

    PathSearchInputs<Pixel> in_;
    PointReader<Pixel32f> band_;
    PointReader<PixelVec2f> gradient_;
    PointReader<Pixel> synthesised_, source_;
    PathCells cells_;
    std::array<std::ptrdiff_t, 8> neighbours_{};  ///< of a cell, by direction
    std::vector<PixelPoint> cut_, arrivals_, path_;
};

}  // namespace Orvane::Engine
