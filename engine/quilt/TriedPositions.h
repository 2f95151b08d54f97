#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace Orvane::Engine {

/// Tracks which positions of a rectangle were tried. A repeated position has the same error and
/// cannot be better than itself, so a block with more samples than positions measures none twice.
class TriedPositions {
public:
    /// Starts over for positions counted from (x, y); a width or height below 1 counts as 1. A
    /// rectangle of more than kMaxPositions is not tracked.
    void start(int x, int y, std::int64_t width, std::int64_t height)
    {
        x_ = x;
        y_ = y;
        width_ = std::max<std::int64_t>(width, 1);
        const std::int64_t count = width_ * std::max<std::int64_t>(height, 1);
        tried_.assign(count <= kMaxPositions ? static_cast<std::size_t>(count) : 0, false);
    }

    /// Tracks nothing.
    void stop() { tried_.clear(); }

    /// Marks a position as tried; true when it is new or not tracked.
    bool isNew(int x, int y)
    {
        const std::int64_t index = (std::int64_t{y} - y_) * width_ + (x - x_);
        if (index < 0 || index >= static_cast<std::int64_t>(tried_.size())) return true;
        const auto place = tried_.begin() + static_cast<std::ptrdiff_t>(index);
        if (*place) return false;
        *place = true;
        return true;
    }

private:
    static constexpr std::int64_t kMaxPositions = std::int64_t{1} << 26;  ///< 8 MB of bits

    int x_ = 0, y_ = 0;
    std::int64_t width_ = 1;
    std::vector<bool> tried_;
};

}  // namespace Orvane::Engine
