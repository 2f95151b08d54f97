#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace Orvane::Engine {

/// Remembers which of a rectangle of positions were tried. A position that is drawn again has the
/// error it had before and cannot win against itself, so a block with more samples than there are
/// positions does not measure any of them twice.
class TriedPositions {
public:
    /// Starts anew for positions counted from (x, y); a width or height below 1 counts as 1. A
    /// rectangle of more than kMost positions is not kept track of.
    void start(int x, int y, std::int64_t width, std::int64_t height)
    {
        x_ = x;
        y_ = y;
        width_ = std::max<std::int64_t>(width, 1);
        const std::int64_t count = width_ * std::max<std::int64_t>(height, 1);
        tried_.assign(count <= kMost ? static_cast<std::size_t>(count) : 0, false);
    }

    /// Keeps track of nothing.
    void stop() { tried_.clear(); }

    /// Whether the position is a new one, as far as that is known; from now on it is none.
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
    static constexpr std::int64_t kMost = std::int64_t{1} << 26;  ///< 8 MB of bits

    int x_ = 0, y_ = 0;
    std::int64_t width_ = 1;
    std::vector<bool> tried_;
};

}  // namespace Orvane::Engine
