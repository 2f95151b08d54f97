#pragma once

namespace Orvane::Engine {

/// A rectangle of pixels in absolute coordinates; x1 and y1 are exclusive.
struct Region {
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;

    bool isEmpty() const { return x0 >= x1 || y0 >= y1; }
    friend bool operator==(const Region&, const Region&) = default;
};

}  // namespace Orvane::Engine
