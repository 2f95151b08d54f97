#pragma once

#include "ofx/ofxCore.h"

namespace Orvane {

/// Two floats: a position, a size or a scale.
struct OvPoint {
    float x = 0.0f;
    float y = 0.0f;
    friend bool operator==(const OvPoint&, const OvPoint&) = default;
};

/// A rectangle of the framework, canonical or pixels. The members are in the framework's order, not
/// in that of OFX; only the functions below convert between the two.
struct OvRect {
    float xMin = 0.0f;
    float xMax = 0.0f;
    float yMin = 0.0f;
    float yMax = 0.0f;
    friend bool operator==(const OvRect&, const OvRect&) = default;
};

constexpr OvRect fromOfx(const OfxRectD& rect)
{
    return {.xMin = static_cast<float>(rect.x1),
            .xMax = static_cast<float>(rect.x2),
            .yMin = static_cast<float>(rect.y1),
            .yMax = static_cast<float>(rect.y2)};
}

constexpr OfxRectD toOfx(const OvRect& rect)
{
    return {.x1 = rect.xMin, .y1 = rect.yMin, .x2 = rect.xMax, .y2 = rect.yMax};
}

}  // namespace Orvane
