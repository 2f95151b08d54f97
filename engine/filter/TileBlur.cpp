#include "engine/filter/TileBlur.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace Orvane::Engine {
namespace {

constexpr int kSide = Tiles::kSide;
/// A column's rows have one more before and after them, which a filter in place may touch.
constexpr int kSpareRows = 2;

/// The number of tiles that cover a length.
int tilesFor(int length)
{
    return (length + kSide - 1) / kSide;
}

}  // namespace

void Tiles::cover(const Region& rect)
{
    rect_ = rect;
    columns_ = tilesFor(rect.x1 - rect.x0);
    rows_ = tilesFor(rect.y1 - rect.y0);
    wanted_.assign(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_), 0);
}

void Tiles::closeGaps(int rows)
{
    for (int column = 0; column < columns_; ++column) {
        int last = -1;
        for (int row = 0; row < rows_; ++row) {
            if (!isWanted(column, row)) continue;
            if (last >= 0 && (row - last - 1) * kSide < rows) {
                for (int between = last + 1; between < row; ++between) want(column, between);
            }
            last = row;
        }
    }
}

TileBlur::TileBlur(SharedWork& work) : work_(work), lines_(static_cast<std::size_t>(work.workers()))
{}

bool TileBlur::makeRoom(int width, int height)
{
    for (Map<Pixel32f>* map : {&first_, &second_}) {
        map->setSize(tilesFor(width) * kSide, tilesFor(height) * kSide + kSpareRows);
        map->allocate();
        if (!map->isUsable()) return false;
    }
    return true;
}

bool TileBlur::run(Tiles& tiles, const Box& box, BlurPlanes& planes, const Beside& beside)
{
    tiles_ = &tiles;
    planes_ = &planes;
    box_ = box;
    // A run of its own costs up to two boxes more.
    tiles.closeGaps(2 * box.radius);
    const Region& rect = tiles.rect();
    rows_ = {std::max(rect.y0 - box.radius, box.readable.begin),
             std::min(rect.y1 + box.radius, box.readable.end)};
    const int batches = tilesFor(std::max(rows_.end - rows_.begin, 0));
    const bool areRowsDone = work_.run(batches + beside.count, [&](int task, int worker) {
        if (task < beside.count) {
            beside.task(task, worker);
        } else {
            blurRows(task - beside.count, linesOf(worker));
        }
    });
    return areRowsDone && work_.run(tiles.columns(), [this](int task, int worker) {
        blurColumn(task, linesOf(worker));
    });
}

TileBlur::Lines& TileBlur::linesOf(int worker)
{
    auto& lines = lines_[static_cast<std::size_t>(worker)];
    if (lines == nullptr) lines = std::make_unique<Lines>();
    return *lines;
}

/// Blurs along x the rows of a batch, in the columns of all tiles that read them.
void TileBlur::blurRows(int batch, Lines& lines)
{
    const Region& rect = tiles_->rect();
    const int y = rows_.begin + batch * kSide;
    const int rows = std::min(kSide, rows_.end - y);
    const int firstTile = std::max(y - box_.radius - rect.y0, 0) / kSide;
    const int lastTile =
        std::min((y + rows - 1 + box_.radius - rect.y0) / kSide, tiles_->rows() - 1);
    lines.wanted.assign(static_cast<std::size_t>(tiles_->columns()), 0);
    for (int row = firstTile; row <= lastTile; ++row) {
        const unsigned char* wanted = tiles_->row(row);
        for (std::size_t i = 0; i < lines.wanted.size(); ++i) lines.wanted[i] |= wanted[i];
    }
    const int count = tiles_->columns();
    const auto isWanted = [&lines](int i) {
        return lines.wanted[static_cast<std::size_t>(i)] != 0;
    };
    for (int begin = 0; begin < count;) {
        if (!isWanted(begin)) {
            ++begin;
            continue;
        }
        int end = begin + 1;
        for (int i = end; i < count && (i - end) * kSide <= 2 * box_.radius; ++i) {
            if (isWanted(i)) end = i + 1;
        }
        blurRowRun(y, rows, {begin, end}, lines);
        begin = end;
    }
}

void TileBlur::blurRowRun(int firstY, int rows, Span columns, Lines& lines)
{
    const Region& rect = tiles_->rect();
    const int outputs = (columns.end - columns.begin) * kSide;
    const int x = rect.x0 + columns.begin * kSide;
    const int samples = outputs + 2 * box_.radius + 2;
    const auto length = static_cast<std::size_t>(samples);
    lines.rows.resize(length * kSide * 2);
    lines.samples.resize(length * kSide);
    bool isAny = false;
    std::array<std::array<const float*, kSide>, 2> from{};
    for (std::size_t i = 0; i < kSide; ++i) {
        float* first = lines.rows.data() + 2 * i * length;
        float* second = first + length;
        from[0][i] = first, from[1][i] = second;
        const bool isThere = static_cast<int>(i) < rows;
        if (isThere && planes_->read(firstY + static_cast<int>(i), x - box_.radius - 1,
                                     x - box_.radius - 1 + samples, first, second)) {
            isAny = true;
        } else {
            std::fill_n(first, 2 * length, 0.0f);
        }
    }
    for (std::size_t plane = 0; plane < from.size(); ++plane) {
        Map<Pixel32f>& map = plane == 0 ? first_ : second_;
        if (isAny) {
            Kernels::kernels().plane.interleave(from[plane].data(), lines.samples.data(), samples);
            filterSamples(lines.samples.data(), x - box_.cornerX, outputs);
        }
        for (int column = columns.begin; column < columns.end; ++column) {
            float* to = blurredRows(map, column, firstY - rows_.begin);
            if (!isAny) {
                std::fill_n(to, kSide * kSide, 0.0f);
                continue;
            }
            std::array<float*, kSide> rowsOf{};
            for (std::size_t i = 0; i < kSide; ++i) rowsOf[i] = to + i * kSide;
            const std::ptrdiff_t first = (column - columns.begin) * kSide;
            Kernels::kernels().plane.separate(lines.samples.data() + first * kSide, rowsOf.data(),
                                              kSide);
        }
    }
}

/// The samples of a column of tiles from a row on.
float* TileBlur::blurredRows(Map<Pixel32f>& plane, int column, int row)
{
    const std::ptrdiff_t stride =
        std::ptrdiff_t{tilesFor(rows_.end - rows_.begin)} * kSide + kSpareRows;
    return plane.pixelAt(0, 0) + (column * stride + 1 + row) * kSide;
}

/// Blurs along y the wanted tiles of a column.
void TileBlur::blurColumn(int column, Lines& lines)
{
    for (int begin = 0; begin < tiles_->rows();) {
        int end = begin;
        while (end < tiles_->rows() && tiles_->isWanted(column, end)) ++end;
        if (begin < end) blurColumnRun(column, {begin, end}, lines);
        begin = end + 1;
    }
}

void TileBlur::blurColumnRun(int column, Span rows, Lines& lines)
{
    const Region& rect = tiles_->rect();
    const int y = rect.y0 + rows.begin * kSide;
    const int outputs = std::min(rect.y0 + rows.end * kSide, rect.y1) - y;
    const int samples = outputs + 2 * box_.radius + 2;
    // Other runs of the column are so far away that none reads what a filter leaves in place.
    const int firstY = y - box_.radius - 1;
    const bool isWhole = firstY >= rows_.begin - 1 && firstY + samples <= rows_.end + 1;
    float* first = isWhole ? blurredRows(first_, column, firstY - rows_.begin) : nullptr;
    float* second = isWhole ? blurredRows(second_, column, firstY - rows_.begin) : nullptr;
    if (!isWhole) {
        const auto plane = static_cast<std::size_t>(samples) * kSide;
        lines.samples.resize(2 * plane);
        first = lines.samples.data();
        second = first + plane;
        copyReadable(first_, column, firstY, samples, first);
        copyReadable(second_, column, firstY, samples, second);
    }
    filterSamples(first, y - box_.cornerY, outputs);
    filterSamples(second, y - box_.cornerY, outputs);
    const int x = rect.x0 + column * kSide;
    planes_->write(x, y, std::min(kSide, rect.x1 - x), outputs, first, second);
}

/// Copies rows of samples; those out of reach are 0.
void TileBlur::copyReadable(Map<Pixel32f>& plane, int column, int firstY, int count, float* to)
{
    const int before = std::clamp(rows_.begin - firstY, 0, count);
    const int end = std::clamp(rows_.end - firstY, before, count);
    std::fill_n(to, before * kSide, 0.0f);
    std::copy_n(blurredRows(plane, column, firstY + before - rows_.begin), (end - before) * kSide,
                to + before * kSide);
    std::fill_n(to + end * kSide, (count - end) * kSide, 0.0f);
}

void TileBlur::filterSamples(float* samples, int phase, int outputs)
{
    BoxLines({.whole = box_.radius}).filter(samples, phase, outputs);
}

}  // namespace Orvane::Engine
