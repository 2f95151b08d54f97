#include "engine/mask/FloodFill.h"

#include <algorithm>

#include "engine/filter/FillAndCopy.h"
#include "engine/map/MapRow.h"

namespace Orvane::Engine {
namespace {

constexpr std::size_t kRoomForRuns = 100;

/// Pixels filled between two polls for an abort; a few milliseconds.
constexpr std::int64_t kPixelsBetweenPolls = 1 << 20;

/// A coordinate clamped to the pixels [first, end) and truncated; `first` for NaN.
int pixelWithin(int first, int end, float coordinate)
{
    // In double, which holds every pixel coordinate.
    const auto low = static_cast<double>(first);
    const auto high = static_cast<double>(end - 1);
    const auto wanted = static_cast<double>(coordinate);
    return static_cast<int>(wanted > low ? std::min(wanted, high) : low);
}

/// The end of a run of targets that starts at i, of `count` pixels.
template <typename Pixel>
int targetEnd(const Pixel* row, int i, int count, Pixel target)
{
    // Whole groups first, which compilers compare at once.
    constexpr int kGroup = 16;
    for (; i + kGroup <= count; i += kGroup) {
        int others = 0;
        for (int j = 0; j < kGroup; ++j) others |= row[i + j] != target ? 1 : 0;
        if (others != 0) break;
    }
    while (i < count && row[i] == target) ++i;
    return i;
}

}  // namespace

template <typename Pixel>
FloodFill<Pixel>::FloodFill(Pixel paintValue) : paintValue_(paintValue)
{
    this->setNumPasses(0);  // all the work is in begin, on the calling thread
    runs_.reserve(kRoomForRuns);
}

template <typename Pixel>
void FloodFill<Pixel>::begin()
{
    filledCount_ = 0;
    const Region& region = this->region();
    if (region.isEmpty()) return;
    if (!keepWritten_) clear();
    if (this->pollAbort()) return;

    forgetRuns();
    const int seedX = pixelWithin(region.x0, region.x1, seedX_);
    fillRunsTouching(pixelWithin(region.y0, region.y1, seedY_), seedX, seedX + 1);
    std::int64_t nextPoll = kPixelsBetweenPolls;
    for (std::size_t i = 0; i < runs_.size(); ++i) {
        if (filledCount_ >= nextPoll) {
            if (this->pollAbort()) return;
            nextPoll = filledCount_ + kPixelsBetweenPolls;
        }
        const Run run = runs_[i];  // a copy: the list grows
        fillRunsTouching(run.y - 1, run.left, run.right);
        fillRunsTouching(run.y + 1, run.left, run.right);
    }
}

template <typename Pixel>
void FloodFill<Pixel>::clear()
{
    ConstantFill<Pixel> fill(clearValue_);
    fill.setStatusRecord(this->statusRecord());
    fill.copyRegion(*this);
    fill.process(&this->target());
}

/// Clears the marks of the last fill, run by run, so that many small fills of a large region stay
/// cheap.
template <typename Pixel>
void FloodFill<Pixel>::forgetRuns()
{
    for (const Run& run : runs_) std::fill_n(mark(run.left, run.y), run.right - run.left, false);
    runs_.clear();
    marked_ = this->region();
    const auto columns = static_cast<std::size_t>(marked_.x1 - marked_.x0);
    marks_.resize(columns * static_cast<std::size_t>(marked_.y1 - marked_.y0), false);
}

template <typename Pixel>
std::vector<bool>::iterator FloodFill<Pixel>::mark(int x, int y)
{
    const auto columns = std::ptrdiff_t{marked_.x1} - marked_.x0;
    return marks_.begin() + (std::ptrdiff_t{y} - marked_.y0) * columns + (x - marked_.x0);
}

/// Fills every run of a row that has a pixel in [left, right).
template <typename Pixel>
void FloodFill<Pixel>::fillRunsTouching(int y, int left, int right)
{
    const Region& region = this->region();
    if (y < region.y0 || y >= region.y1) return;
    const RowReader read(this->other(), y);
    const int count = region.x1 - region.x0;
    const Pixel* row = read.span(region.x0, count);
    if (row == nullptr) {  // some pixels need edge handling
        copy_.resize(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            copy_[static_cast<std::size_t>(i)] = read[region.x0 + i];
        }
        row = copy_.data();
    }
    for (int x = left; x < right; ++x) {
        if (row[x - region.x0] != targetValue_) continue;
        const int end = region.x0 + targetEnd(row, x - region.x0, count, targetValue_);
        if (!*mark(x, y)) {
            int begin = x;
            while (begin > region.x0 && row[begin - 1 - region.x0] == targetValue_) --begin;
            fillRun({y, begin, end});
        }
        x = end;  // not a target
    }
}

template <typename Pixel>
void FloodFill<Pixel>::fillRun(const Run& run)
{
    const int count = run.right - run.left;
    runs_.push_back(run);
    std::fill_n(mark(run.left, run.y), count, true);
    std::fill_n(RowWriter(this->target(), run.y).from(run.left), count, paintValue_);
    filledCount_ += count;
    runFilled(run.y, run.left, run.right);
}

template class FloodFill<Pixel32f>;
template class FloodFill<Pixel32i>;

}  // namespace Orvane::Engine
