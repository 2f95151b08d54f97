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
constexpr int kLanes = 16;

/// One sample of every line of a batch.
using Sample = std::array<float, kLanes>;
using Sums = std::array<double, kLanes>;

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
                std::vector<Sample>& samples)
{
    std::array<const float*, kLanes> rows;
    for (int lane = 0; lane < kLanes; ++lane) {
        rows[static_cast<std::size_t>(lane)] = map.pixelAt(0, firstRow + std::min(lane, lanes - 1));
    }
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (columns[i] < 0) {
            samples[i].fill(map.fillValue());
        } else {
            for (std::size_t lane = 0; lane < kLanes; ++lane) {
                samples[i][lane] = rows[lane][columns[i]];
            }
        }
    }
}

/// A batch of lines and its filter. Each worker has its own.
class LineBatch {
public:
    LineBatch(const BoxFilter& filter, int applications, int count)
        : box_(static_cast<std::size_t>(filter.whole) * 2 + 1),
          fraction_(filter.fraction),
          norm_(1.0 / (static_cast<double>(box_) + 2.0 * fraction_)),
          applications_(applications),
          samples_(static_cast<std::size_t>(count) +
                   static_cast<std::size_t>(applications) * (box_ + 1)),
          tails_(std::min(box_, samples_.size()))
    {}

    /// The lines with their padding; after `filter` the first `count` samples are the result.
    std::vector<Sample>& samples() { return samples_; }

    void filter()
    {
        std::size_t outputs = samples_.size();
        for (int i = 0; i < applications_; ++i) applyBox(outputs -= box_ + 1);
    }

private:
    void applyBox(std::size_t outputs);
    void sumTails(const Sample* segment, std::size_t outputs);
    void writeBoxes(Sample* ends, std::size_t outputs);

    std::size_t box_;  ///< samples of full weight
    double fraction_, norm_;
    int applications_;
    std::vector<Sample> samples_;
    std::vector<Sums> tails_;
};

/// Replaces sample i by the filter over samples i to i + box + 1.
///
/// The line is split into segments as long as the box, so that every box is the tail of one segment
/// and the head of the next (van Herk 1992). This takes three additions for each sample and no
/// subtraction, so that rounding errors of large samples do not reach distant small ones.
void LineBatch::applyBox(std::size_t outputs)
{
    for (std::size_t first = 0; first < outputs; first += box_) {
        const std::size_t count = std::min(box_, outputs - first);
        sumTails(&samples_[first + 1], count);
        writeBoxes(&samples_[first], count);
    }
}

/// tails_[j] = the sum of a segment from its sample j to its end, for the first `outputs` j.
void LineBatch::sumTails(const Sample* segment, std::size_t outputs)
{
    Sums sum{};
    for (std::size_t j = box_; j-- > 0;) {
        for (std::size_t lane = 0; lane < kLanes; ++lane) sum[lane] += segment[j][lane];
        if (j < outputs) tails_[j] = sum;
    }
}

/// Writes the outputs whose boxes start in a segment; `ends` points at the sample before it.
void LineBatch::writeBoxes(Sample* ends, std::size_t outputs)
{
    Sums head{};
    for (std::size_t j = 0; j < outputs; ++j) {
        Sums sum = tails_[j];
        for (std::size_t lane = 0; lane < kLanes; ++lane) sum[lane] += head[lane];
        const Sample entering = ends[j + box_ + 1];
        if (fraction_ != 0.0) {
            const Sample leaving = ends[j];
            for (std::size_t lane = 0; lane < kLanes; ++lane) {
                const double both = static_cast<double>(leaving[lane]) + entering[lane];
                sum[lane] += fraction_ * both;
            }
        }
        Sample result;
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            result[lane] = static_cast<float>(sum[lane] * norm_);
            head[lane] += entering[lane];
        }
        ends[j] = result;
    }
}

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
    std::vector<Sample>& samples = batch.samples();
    const std::span<const int> columns(columns_.data() + live_.begin, samples.size());
    for (int y = rows.begin; y < rows.end; y += kLanes) {
        const int lanes = std::min(kLanes, rows.end - y);
        gatherRows(other(), firstRow_ + y, lanes, columns, samples);
        batch.filter();
        for (int lane = 0; lane < lanes; ++lane) {
            const auto l = static_cast<std::size_t>(lane);
            float* row = temporary_.pixelAt(0, y + lane);
            for (int x = 0; x < width; ++x) row[x] = samples[static_cast<std::size_t>(x)][l];
        }
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
    std::vector<Sample>& samples = batch.samples();
    std::vector<float*> to;  // each row's first pixel, found once, not for every batch
    for (int y = liveRows_.begin; y < liveRows_.end; ++y) {
        to.push_back(RowWriter(target(), area.y0 + y).from(area.x0));
    }
    for (int x = columns.begin; x < columns.end; x += kLanes) {
        const int lanes = std::min(kLanes, columns.end - x);
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const int row = rows_[static_cast<std::size_t>(liveRows_.begin) + i];
            if (row >= 0) {
                std::copy_n(temporary_.pixelAt(x - live_.begin, row), lanes, samples[i].begin());
            } else {
                samples[i].fill(other().fillValue());
            }
        }
        batch.filter();
        for (std::size_t i = 0; i < to.size(); ++i) {
            std::copy_n(samples[i].begin(), lanes, to[i] + x);
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
