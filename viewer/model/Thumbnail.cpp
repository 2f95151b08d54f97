#include "viewer/model/Thumbnail.h"

#include <algorithm>
#include <cmath>

#include "files/PictureScale.h"

namespace Tesseret::Viewer {

namespace {

constexpr double kSurroundings = 0.3;  ///< of the longer side, on each side
constexpr double kMostSide = 400.0;

/// A range of this length round the middle of another, inside the limits.
struct Range {
    int first, end;
};
Range around(double middle, double length, int first, int end)
{
    const int wanted = std::min(static_cast<int>(std::lround(length)), end - first);
    const int start = static_cast<int>(std::lround(middle - wanted / 2.0));
    const int from = std::clamp(start, first, end - wanted);
    return {from, from + wanted};
}

}  // namespace

Picture thumbnailOf(const Picture& picture, const OfxRectI& box, double aspect)
{
    const double width = box.x2 - box.x1, height = box.y2 - box.y1;
    const double margin = 2.0 * kSurroundings * std::max(width, height);
    const double tall = std::max(height + margin, (width + margin) / aspect);
    const OfxRectI all = picture.bounds();
    const Range x = around((box.x1 + box.x2) / 2.0, tall * aspect, all.x1, all.x2);
    const Range y = around((box.y1 + box.y2) / 2.0, tall, all.y1, all.y2);
    Picture part = picture.copied({x.first, y.first, x.end, y.end}, {});
    const double scale = kMostSide / std::max(x.end - x.first, y.end - y.first);
    return scale < 1.0 ? Files::scaled(part, OfxPointD{scale, scale}) : std::move(part);
}

}  // namespace Tesseret::Viewer
