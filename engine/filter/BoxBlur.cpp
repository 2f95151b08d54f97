#include "engine/filter/BoxBlur.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>

#include "engine/filter/FillAndCopy.h"
#include "engine/map/ExactMath.h"
#include "engine/map/MapRow.h"

namespace Orvane::Engine {
namespace {

/// Larger than any image; bounds the line buffers.
constexpr float kMaxRadius = 100'000.0f;

/// Lines are filtered in batches; a batch of columns is one cache line of each row.
constexpr int kLanes = BoxLines::kCount;

/// `radius` clamped to [0, max]; NaN becomes 0.
float limited(float radius, float max)
{
    return radius > 0.0f ? std::min(radius, max) : 0.0f;
}

BoxFilter filterOf(float radius)
{
    const int whole = truncateToInt(radius);
    return {whole, radius - static_cast<float>(whole)};
}

/// The stored index that each coordinate of [first, end) reads, or -1.
std::vector<int> resolveAll(const MapAxis& axis, int first, int end)
{
    std::vector<int> indices;
    indices.reserve(static_cast<std::size_t>(end) - static_cast<std::size_t>(first));
    for (int p = first; p < end; ++p) indices.push_back(axis.resolve(p).value_or(-1));
    return indices;
}

/// The stored columns and rows of a map that hold all of its nonzero pixels.
struct StoredBounds {
    int columnBegin, columnEnd, rowBegin, rowEnd;
};

StoredBounds nonzeroBounds(const Map<Pixel32f>& map)
{
    const int columns = map.xAxis().storeLength, rows = map.yAxis().storeLength;
    StoredBounds bounds{columns, 0, rows, 0};
    for (int y = 0; y < rows; ++y) {
        const float* row = map.pixelAt(0, y);
        int any = 0;
        for (int x = 0; x < columns; ++x) any |= row[x] != 0.0f ? 1 : 0;
        if (any == 0) continue;
        const auto isNonzero = [](float value) { return value != 0.0f; };
        const float* first = std::find_if(row, row + columns, isNonzero);
        int last = columns - 1;
        while (last >= bounds.columnEnd && row[last] == 0.0f) --last;
        bounds = {std::min(bounds.columnBegin, static_cast<int>(first - row)),
                  std::max(bounds.columnEnd, last + 1), std::min(bounds.rowBegin, y), y + 1};
    }
    return bounds;
}

/// The part of a line of `outputs` that can be nonzero when only samples with an index in
/// [begin, end) are. It starts at a segment, so that all its sums are those of the whole line.
BoxBlur::Span liveSpan(const std::vector<int>& indices, int begin, int end, int outputs,
                       const BoxFilter& filter, int applications)
{
    const auto isLive = [begin, end](int index) { return index >= begin && index < end; };
    const auto first = std::find_if(indices.begin(), indices.end(), isLive);
    const auto last = std::find_if(indices.rbegin(), indices.rend(), isLive);
    if (first == indices.end()) return {0, 0};
    const int box = 2 * filter.whole + 1;
    const auto firstSample = static_cast<int>(first - indices.begin());
    const auto endSample = static_cast<int>(indices.rend() - last);
    const int firstOutput = std::max(firstSample - applications * (box + 1), 0);
    return {std::min(firstOutput / box * box, outputs), std::min(endSample, outputs)};
}

/// Gathers `lanes` stored rows of a map at the given columns; column -1 is the fill value. A batch
/// that is not full repeats its last row.
void gatherRows(const Map<Pixel32f>& map, int firstRow, int lanes, std::span<const int> columns,
                float* samples)
{
    std::array<const float*, kLanes> rows;
    for (int lane = 0; lane < kLanes; ++lane) {
        rows[static_cast<std::size_t>(lane)] = map.pixelAt(0, firstRow + std::min(lane, lanes - 1));
    }
    for (std::size_t i = 0; i < columns.size();) {
        if (columns[i] < 0) {
            std::fill_n(samples, kLanes, map.fillValue());
            ++i;
            samples += kLanes;
            continue;
        }
        // Columns are consecutive except at the edges.
        std::size_t end = i + 1;
        while (end < columns.size() && columns[end] == columns[end - 1] + 1) ++end;
        std::array<const float*, kLanes> runs;
        std::ranges::transform(rows, runs.begin(),
                               [&](const float* row) { return row + columns[i]; });
        Kernels::kernels().plane.interleave(runs.data(), samples, static_cast<int>(end - i));
        samples += (end - i) * kLanes;
        i = end;
    }
}

/// Copies `lanes` samples. Batches are mostly full, and a fixed count needs no call.
void copyLanes(const float* from, int lanes, float* to)
{
    if (lanes == kLanes) {
        std::copy_n(from, kLanes, to);
    } else {
        std::copy_n(from, lanes, to);
    }
}

/// A batch of lines that the box is applied to several times. Each worker has its own.
class LineBatch {
public:
    LineBatch(const BoxFilter& filter, int applications, int count)
        : lines_(filter),
          margin_(filter.size() + 1),
          applications_(applications),
          count_(count + applications * margin_),
          samples_(static_cast<std::size_t>(count_) * kLanes)
    {}

    /// The lines with their padding, sample by sample; after `filter` the first `count` samples are
    /// the result.
    float* samples() { return samples_.data(); }
    int sampleCount() const { return count_; }

    void filter()
    {
        int outputs = count_;
        for (int i = 0; i < applications_; ++i) lines_.filter(samples(), 0, outputs -= margin_);
    }

private:
    BoxLines lines_;
    int margin_;  ///< samples that one application reads on both sides together
    int applications_, count_;
    std::vector<float> samples_;
};

}  // namespace

Region blurredAlike(const Region& part, const Region& frame, float radius)
{
    const int longer = std::max(frame.x1 - frame.x0, frame.y1 - frame.y0);
    const BoxFilter filter = filterOf(limited(radius, 3.0f * static_cast<float>(longer)));
    const int segment = 2 * filter.whole + 1;
    const Region inside = part.within(frame);
    return {inside.x0 - (inside.x0 - frame.x0) % segment,
            inside.y0 - (inside.y0 - frame.y0) % segment, inside.x1, inside.y1};
}

BoxBlur::BoxBlur(Variant variant, float radius)
    : variant_(variant), radiusX_(radius), radiusY_(radius)
{}

void BoxBlur::process(const Map<Pixel32f>& input, Map<Pixel32f>& target)
{
    if (!input.isUsable()) {
        reportMap("Generator", "bogus");
        return;
    }
    run("Generator", &input, &target);
}

void BoxBlur::begin()
{
    setNumPasses(prepare() ? 2 : 0);
}

/// Prepares the two passes, along x and along y; false when they are not needed.
bool BoxBlur::prepare()
{
    if (region().isEmpty()) return false;
    target().setEdgeMode(other().xAxis().edgeMode, other().yAxis().edgeMode);
    target().setFillValue(other().fillValue());

    const bool three = variant_ == ThreeApplications;
    const float scaledX = three ? radiusX_ / radiusScaleX() : radiusX_ * radiusScaleY();
    const float largerSide = static_cast<float>(std::max(target().width(), target().height()));
    const float maxRadius = three ? 3.0f * largerSide : kMaxRadius;
    const float x = limited(scaledX, maxRadius);
    const float y = limited(radiusY_, maxRadius);
    if (x == 0.0f && y == 0.0f) {
        copyInput();
        return false;
    }
    filterX_ = filterOf(x);
    filterY_ = filterOf(y);
    if (makeRoom()) return true;
    if (RenderStatus* status = statusRecord()) {
        status->aborted = 1;
        status->errorCode = kErrorOutOfMemory;
    }
    return false;
}

void BoxBlur::copyInput()
{
    if (&other() == &target()) return;
    MapCopy<Pixel32f> copy;
    copy.setStatusRecord(statusRecord());
    copy.setRegion(region());
    copy.process(other(), target());
}

/// Finds the coordinates that are read and the part of the result that can be nonzero, and makes
/// the temporary map hold the input's nonzero rows, blurred along x.
bool BoxBlur::makeRoom()
{
    const Region& area = region();
    const int padX = applications() * filterX_.reach();
    const int padY = applications() * filterY_.reach();
    columns_ = resolveAll(other().xAxis(), area.x0 - padX, area.x1 + padX);
    rows_ = resolveAll(other().yAxis(), area.y0 - padY, area.y1 + padY);
    findLivePart();

    const int width = live_.end - live_.begin;
    int lastRow = -1;
    firstRow_ = std::numeric_limits<int>::max();
    for (const int row : rows_) {
        if (row < 0) continue;
        firstRow_ = std::min(firstRow_, row);
        lastRow = std::max(lastRow, row);
    }
    for (int& row : rows_) {
        if (row >= 0) row -= firstRow_;
    }
    const int height = lastRow < 0 || width == 0 ? 0 : lastRow - firstRow_ + 1;
    if (temporary_.width() != width || temporary_.height() != height || !temporary_.isUsable()) {
        temporary_.setSize(width, height);
        temporary_.allocate();
    }
    return height == 0 || temporary_.isUsable();
}

/// Finds the part of the result that can be nonzero. That is all of it when the input's fill value
/// is not 0.
void BoxBlur::findLivePart()
{
    const Region& area = region();
    const int width = area.x1 - area.x0, height = area.y1 - area.y0;
    live_ = {0, width};
    liveRows_ = {0, height};
    if (other().fillValue() != 0.0f) return;
    const StoredBounds bounds = nonzeroBounds(other());
    live_ =
        liveSpan(columns_, bounds.columnBegin, bounds.columnEnd, width, filterX_, applications());
    liveRows_ = liveSpan(rows_, bounds.rowBegin, bounds.rowEnd, height, filterY_, applications());
    for (int& row : rows_) {
        if (row < bounds.rowBegin || row >= bounds.rowEnd) row = -1;
    }
}

void BoxBlur::processPass()
{
    if (currentPass() == 0) {
        blurRows();
    } else {
        blurColumns();
    }
}

/// Blurs from the input into the temporary map, this worker's share of its rows.
void BoxBlur::blurRows()
{
    RowRange rows{0, temporary_.height()};
    threadRange(rows.begin, rows.end);
    if (rows.isEmpty()) return;
    const int width = temporary_.width();
    LineBatch batch(filterX_, applications(), width);
    const std::span<const int> columns(columns_.data() + live_.begin,
                                       static_cast<std::size_t>(batch.sampleCount()));
    std::vector<float> rest(static_cast<std::size_t>(width));  // takes what no row is there for
    for (int y = rows.begin; y < rows.end; y += kLanes) {
        const int lanes = std::min(kLanes, rows.end - y);
        gatherRows(other(), firstRow_ + y, lanes, columns, batch.samples());
        batch.filter();
        std::array<float*, kLanes> to;
        for (int lane = 0; lane < kLanes; ++lane) {
            to[static_cast<std::size_t>(lane)] =
                lane < lanes ? temporary_.pixelAt(0, y + lane) : rest.data();
        }
        Kernels::kernels().plane.separate(batch.samples(), to.data(), width);
    }
}

/// Blurs from the temporary map into the target. Workers share columns, not rows, so that each
/// column is summed from end to end, in the same order for any number of threads.
void BoxBlur::blurColumns()
{
    clearAround();
    const Region& area = region();
    RowRange columns{live_.begin, live_.end};
    threadRange(columns.begin, columns.end);
    if (columns.isEmpty()) return;
    LineBatch batch(filterY_, applications(), liveRows_.end - liveRows_.begin);
    std::vector<float*> to;  // each row's first pixel, found once, not for every batch
    for (int y = liveRows_.begin; y < liveRows_.end; ++y) {
        to.push_back(RowWriter(target(), area.y0 + y).from(area.x0));
    }
    for (int x = columns.begin; x < columns.end; x += kLanes) {
        const int lanes = std::min(kLanes, columns.end - x);
        float* sample = batch.samples();
        for (int i = 0; i < batch.sampleCount(); ++i, sample += kLanes) {
            const int row =
                rows_[static_cast<std::size_t>(liveRows_.begin) + static_cast<std::size_t>(i)];
            if (row >= 0) {
                copyLanes(temporary_.pixelAt(x - live_.begin, row), lanes, sample);
            } else {
                std::fill_n(sample, kLanes, other().fillValue());
            }
        }
        batch.filter();
        for (std::size_t i = 0; i < to.size(); ++i) {
            copyLanes(batch.samples() + i * kLanes, lanes, to[i] + x);
        }
    }
}

/// Clears the target around the live part, in this worker's share of the rows. The input may be the
/// target; it has been read by now.
void BoxBlur::clearAround()
{
    const Region& area = region();
    const auto [yBegin, yEnd] = threadRows();
    for (int y = yBegin; y < yEnd; ++y) {
        float* row = RowWriter(target(), y).from(area.x0);
        const bool isLive = y - area.y0 >= liveRows_.begin && y - area.y0 < liveRows_.end;
        std::fill(row, row + (isLive ? live_.begin : area.x1 - area.x0), 0.0f);
        if (isLive) std::fill(row + live_.end, row + (area.x1 - area.x0), 0.0f);
    }
}

}  // namespace Orvane::Engine
