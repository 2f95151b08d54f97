#pragma once

#include <algorithm>

namespace Orvane::Engine {

/// A rectangle of pixels in absolute coordinates; x1 and y1 are exclusive.
struct Region {
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;

    bool isEmpty() const { return x0 >= x1 || y0 >= y1; }
    /// The part inside another rectangle; may be empty.
    Region within(const Region& other) const
    {
        return {std::max(x0, other.x0), std::max(y0, other.y0), std::min(x1, other.x1),
                std::min(y1, other.y1)};
    }
    friend bool operator==(const Region&, const Region&) = default;
};

}  // namespace Orvane::Engine
