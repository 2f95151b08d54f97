#include "viewer/model/MatteOutline.h"

#include <algorithm>

#include "render/MatteValue.h"

namespace Tesseret::Viewer {

namespace {

constexpr int kTile = 256;

bool isMaskedAt(const Picture& matte, int x, int y)
{
    return matte.contains(x, y) && Render::isMasked(*matte.pixel<std::uint8_t>(x, y));
}

/// Whether any pixel of a box is not zero; most tiles have none.
bool hasPaint(const Picture& matte, const OfxRectI& box)
{
    const OfxRectI inside = intersection(box, matte.bounds());
    for (int y = inside.y1; y < inside.y2; ++y) {
        const auto* const row = matte.pixel<std::uint8_t>(inside.x1, y);
        const auto isSet = [](std::uint8_t value) { return value != 0; };
        if (std::any_of(row, row + (inside.x2 - inside.x1), isSet)) return true;
    }
    return false;
}

/// Reports each run of places from the first to the end where there is an edge.
template <typename IsEdge, typename Report>
void traceRun(int first, int end, const IsEdge& isEdge, const Report& report)
{
    int start = first;
    for (int at = first; at <= end; ++at) {
        if (at < end && isEdge(at)) continue;
        if (start < at) report(start, at);
        start = at + 1;
    }
}

int tilesIn(int length)
{
    return (length + kTile - 1) / kTile;
}

}  // namespace

void MatteOutline::update(const Picture& matte, const OfxRectI& box)
{
    const OfxRectI all = matte.bounds();
    OfxRectI changed = box;
    if (tiles_.empty()) {
        columns_ = tilesIn(matte.width());
        rows_ = tilesIn(matte.height());
        tiles_.resize(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_));
        changed = all;
    }
    if (isEmpty(changed)) return;
    // A tile has the lower and left sides of its pixels, which depend on the pixels before them.
    const int column2 = std::min((changed.x2 - all.x1) / kTile, columns_ - 1);
    const int row2 = std::min((changed.y2 - all.y1) / kTile, rows_ - 1);
    for (int row = (changed.y1 - all.y1) / kTile; row <= row2; ++row) {
        for (int column = (changed.x1 - all.x1) / kTile; column <= column2; ++column) {
            trace(matte, column, row);
        }
    }
}

/// The last tiles have the picture's upper and right edge too.
void MatteOutline::trace(const Picture& matte, int column, int row)
{
    const OfxRectI all = matte.bounds();
    const int x1 = all.x1 + column * kTile, y1 = all.y1 + row * kTile;
    const int x2 = column + 1 == columns_ ? all.x2 + 1 : x1 + kTile;
    const int y2 = row + 1 == rows_ ? all.y2 + 1 : y1 + kTile;
    std::vector<Line>& lines =
        tiles_[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
               static_cast<std::size_t>(column)];
    lines.clear();
    if (!hasPaint(matte, {x1 - 1, y1 - 1, x2, y2})) return;
    for (int y = y1; y < y2; ++y) {
        traceRun(
            x1, x2, [&](int x) { return isMaskedAt(matte, x, y) != isMaskedAt(matte, x, y - 1); },
            [&](int from, int to) {
                lines.push_back({{from, y}, {to, y}});
            });
    }
    for (int x = x1; x < x2; ++x) {
        traceRun(
            y1, y2, [&](int y) { return isMaskedAt(matte, x, y) != isMaskedAt(matte, x - 1, y); },
            [&](int from, int to) {
                lines.push_back({{x, from}, {x, to}});
            });
    }
}

}  // namespace Tesseret::Viewer
