#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "engine/filter/BoxLines.h"
#include "engine/map/Map.h"
#include "engine/map/Region.h"
#include "engine/pass/SharedWork.h"

namespace Orvane::Engine {

/// Square tiles over a rectangle, each wanted or not. The last ones may reach beyond it.
class Tiles {
public:
    static constexpr int kSide = BoxLines::kCount;

    /// Covers a rectangle with tiles that are not wanted.
    void cover(const Region& rect);
    /// Also wants tiles between wanted ones of a column, when fewer than `rows` rows lie between.
    void closeGaps(int rows);

    const Region& rect() const { return rect_; }
    int columns() const { return columns_; }
    int rows() const { return rows_; }
    bool isWanted(int column, int row) const { return wanted_[index(column, row)] != 0; }
    void want(int column, int row) { wanted_[index(column, row)] = 1; }
    /// The wanted tiles of a row, a byte for each.
    const unsigned char* row(int row) const { return &wanted_[index(0, row)]; }

private:
    std::size_t index(int column, int row) const
    {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
               static_cast<std::size_t>(column);
    }

    Region rect_;
    int columns_ = 0, rows_ = 0;
    std::vector<unsigned char> wanted_;
};

/// What a tile blur reads and writes: two planes of floats that are 0 outside of some part. Called
/// by several workers at once, on different rows and columns.
class BlurPlanes {
public:
    virtual ~BlurPlanes() = default;
    /// Writes the samples [x0, x1) of row y; false when all are 0, and then need not write any.
    virtual bool read(int y, int x0, int x1, float* first, float* second) const = 0;
    /// Gets blurred samples, those of a tile column's pixels [x, x + width) in rows from y on. Rows
    /// of samples are Tiles::kSide apart.
    virtual void write(int x, int y, int width, int height, const float* first,
                       const float* second) = 0;
};

/// Blurs two planes with one application of a box along x and then along y, like `BoxBlur` over a
/// region with the given corner, but only where tiles are wanted.
class TileBlur {
public:
    struct Box {
        int radius;
        int cornerX, cornerY;  ///< where the lines of the region start; not behind the rectangle
        RowRange readable;     ///< rows outside of these are 0
    };
    /// Other tasks, run beside those of the first call.
    struct Beside {
        int count = 0;
        std::function<void(int task, int worker)> task;
    };

    explicit TileBlur(SharedWork& work);

    /// Allocates for rectangles of up to this size; false without memory.
    bool makeRoom(int width, int height);
    /// Two calls into the host's threads. False after an abort.
    bool run(Tiles& tiles, const Box& box, BlurPlanes& planes, const Beside& beside);

private:
    /// Lines of two planes and their filter. Each worker has its own.
    struct Lines {
        std::vector<float> rows, samples;
        std::vector<unsigned char> wanted;
    };
    struct Span {
        int begin, end;
    };

    void blurRows(int batch, Lines& lines);
    void blurRowRun(int firstY, int rows, Span columns, Lines& lines);
    void blurColumn(int column, Lines& lines);
    void blurColumnRun(int column, Span rows, Lines& lines);
    void copyReadable(Map<Pixel32f>& plane, int column, int firstY, int count, float* to);
    void filterSamples(float* samples, int phase, int outputs);
    float* blurredRows(Map<Pixel32f>& plane, int column, int row);
    Lines& linesOf(int worker);

    SharedWork& work_;
    // The planes blurred along x: all rows in reach of a column of tiles, kSide samples each, with
    // spare ones before and after them, then those of the next column.
    Map<Pixel32f> first_, second_;
    std::vector<std::unique_ptr<Lines>> lines_;

    // Of the current run.
    Tiles* tiles_ = nullptr;
    BlurPlanes* planes_ = nullptr;
    Box box_{};
    RowRange rows_{};  ///< of the two maps
};

}  // namespace Orvane::Engine
