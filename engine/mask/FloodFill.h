#pragma once

#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// Fills the connected area around a seed pixel: a scan-line fill (after Fishkin 1990), whose cost
/// is proportional to the filled area.
///
/// Every pixel of the region that is 4-connected to the seed through pixels that read exactly the
/// target value gets the paint value in the written map; a closed curve of diagonal steps stops the
/// fill. All other pixels get the clear value. Nothing is filled when the seed does not read the
/// target value, or after an abort.
///
/// `Pixel` is Pixel32f or Pixel32i. The input is read through its edge modes. The fill always runs
/// on the calling thread.
template <typename Pixel>
class FloodFill : public Sampler<const Map<Pixel>, Map<Pixel>> {
public:
    /// Masks are painted with M, the channel maximum of the render depth.
    explicit FloodFill(Pixel paintValue);
    /// The integer form paints 2147483647 by default.
    FloodFill() requires std::is_integral_v<Pixel> : FloodFill(std::numeric_limits<Pixel>::max()) {}

    /// Absolute coordinates, (0, 0) by default; clamped to the region, then truncated.
    void setSeed(float x, float y) { seedX_ = x, seedY_ = y; }
    void setPaintValue(Pixel value) { paintValue_ = value; }
    void setClearValue(Pixel value) { clearValue_ = value; }
    void setTargetValue(Pixel value) { targetValue_ = value; }
    /// When on, the written map is not cleared first.
    void setKeepWritten(bool on) { keepWritten_ = on; }

    /// The number of pixels that the last call filled.
    std::int64_t filledCount() const { return filledCount_; }

    void begin() override;

protected:
    /// Called once for every run of filled pixels, [left, right) of a row.
    virtual void runFilled(int /*y*/, int /*left*/, int /*right*/) {}

private:
    /// Consecutive filled pixels of one row: x from left to right, right exclusive.
    struct Run {
        int y, left, right;
    };

    void clear();
    void forgetRuns();
    void fillRunsTouching(int y, int left, int right);
    void fillRun(const Run& run);
    std::vector<bool>::iterator mark(int x, int y);

    Pixel paintValue_;
    Pixel clearValue_ = 0, targetValue_ = 0;
    float seedX_ = 0.0f, seedY_ = 0.0f;
    bool keepWritten_ = false;
    std::int64_t filledCount_ = 0;
    // Both keep their storage from call to call.
    std::vector<Run> runs_;    ///< all runs of the last fill, unprocessed ones last
    std::vector<bool> marks_;  ///< set on the pixels of the runs, over `marked_`
    Region marked_;
    std::vector<Pixel> copy_;  ///< of a row that needs edge handling
};

}  // namespace Orvane::Engine
