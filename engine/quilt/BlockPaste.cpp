#include "engine/quilt/BlockPaste.h"

#include <algorithm>

#include "engine/map/ExactMath.h"
#include "engine/map/PixelMix.h"

namespace Orvane::Engine {
namespace {

constexpr float kNone = -1.0f;  ///< keep the destination
constexpr float kFull = 2.0f;   ///< copy the image, alpha included

/// The image's share at a pixel dx right of the vertical and dy above the horizontal seam: 0 to 1,
/// or one of the two constants above. The first matching rule applies; no reachable rule divides by
/// 0.
float share(int dx, int dy, const Blend& blend)
{
    // exact: float, one rounding for each operation, left to right.
    const auto x = static_cast<float>(dx);
    const auto y = static_cast<float>(dy);
    const auto bw = static_cast<float>(blend.width);
    const auto bh = static_cast<float>(blend.height);
    if (dx >= blend.width && dy >= blend.height) return kFull;
    if (dx >= blend.width && dy >= 0) return 0.5f + y * 0.5f / bh;
    if (dx >= 0 && dy >= blend.height) return 0.5f + x * 0.5f / bw;
    if (dx >= 0 && dy >= 0) return 0.5f + (x * 0.5f / bw) * y / bh;
    if (dx >= 0 && dy >= -blend.height) return 0.5f - -y * 0.5f / bh;
    if (dx >= -blend.width && dy >= 0) return 0.5f - -x * 0.5f / bw;
    return kNone;
}

/// Copies [x0, x1) from where a block's pixels come from.
template <typename Pixel>
void copyFrom(const RowReader<Pixel>& from, int x0, int x1,
              const typename BlockPaste<Pixel>::Block& block, RowWriter<Pixel>& to)
{
    const int count = x1 - x0;
    if (count <= 0) return;
    if (const Pixel* span = from.span(block.sourceOf(x0), count)) {
        std::copy_n(span, count, to.from(x0));
    } else {
        for (int x = x0; x < x1; ++x) to[x] = from[block.sourceOf(x)];
    }
}

}  // namespace

int cutAt(int corner, float seam)
{
    return truncateToInt(static_cast<float>(corner) + seam);
}

std::vector<float> blendRamp(int halfWidth)
{
    std::vector<float> ramp;
    for (int dx = -halfWidth; dx < halfWidth; ++dx) {
        ramp.push_back(share(dx, 0, {.width = halfWidth, .height = 0}));
    }
    return ramp;
}

template <typename Pixel>
void BlockPaste<Pixel>::run(const Map<Pixel>& image, const Block& block, const RowRange& rows,
                            Map<Pixel>& destination)
{
    const Region& region = block.region;
    const int begin = std::max(rows.begin, region.y0), end = std::min(rows.end, region.y1);
    if (begin >= end || region.x0 >= region.x1) return;
    resolveSeam(block);
    const Region stored = destination.storedExtent();
    const Columns columns{std::max(region.x0, stored.x0), std::min(region.x1, stored.x1)};
    if (columns.begin >= columns.end) return;
    const bool blends = blend_.width != 0 || blend_.height != 0;
    for (int y = begin; y < end; ++y) {
        const RowReader from(image, block.srcY + (y - region.y0));
        RowWriter to(destination, y);
        if (blends) {
            blendRow(block, y, columns, from, to);
        } else {
            cutRow(block, y, columns, from, to);
        }
    }
}

template <typename Pixel>
void BlockPaste<Pixel>::resolveSeam(const Block& block)
{
    const Region& region = block.region;
    seamY_.resize(static_cast<std::size_t>(region.x1 - region.x0));
    for (std::size_t i = 0; i < seamY_.size(); ++i) {
        seamY_[i] = cutAt(region.y0, block.seams.horizontal[i].y);
    }
    const auto [lowest, highest] = std::ranges::minmax(seamY_);
    lowestSeamY_ = lowest;
    highestSeamY_ = std::max(highest, region.y0);
}

/// Pastes one row along hard cuts.
template <typename Pixel>
void BlockPaste<Pixel>::cutRow(const Block& block, int y, const Columns& columns,
                               const RowReader<Pixel>& image, RowWriter<Pixel>& to)
{
    const Region& region = block.region;
    const float seam = block.seams.vertical[static_cast<std::size_t>(y - region.y0)].x;
    const int begin = std::max(cutAt(region.x0, seam), columns.begin);
    if (begin >= columns.end || y < lowestSeamY_) return;
    if (y >= highestSeamY_) {
        copyFrom<Pixel>(image, begin, columns.end, block, to);
        return;
    }
    const auto isAbove = [&](int x) {
        return y >= seamY_[static_cast<std::size_t>(x - region.x0)];
    };
    for (int x = begin; x < columns.end;) {
        const int first = x;
        while (x < columns.end && isAbove(x)) ++x;
        copyFrom<Pixel>(image, first, x, block, to);
        while (x < columns.end && !isAbove(x)) ++x;
    }
}

/// Pastes one row across blend bands.
template <typename Pixel>
void BlockPaste<Pixel>::blendRow(const Block& block, int y, const Columns& columns,
                                 const RowReader<Pixel>& image, RowWriter<Pixel>& to)
{
    const Region& region = block.region;
    const int seamX =
        cutAt(region.x0, block.seams.vertical[static_cast<std::size_t>(y - region.y0)].x);
    // From here on the block is copied whole.
    int whole = columns.end;
    if (y - blend_.height >= highestSeamY_) {
        whole = std::clamp(seamX + blend_.width, columns.begin, columns.end);
        copyFrom<Pixel>(image, whole, columns.end, block, to);
    }
    const int* seamY = seamY_.data() + (columns.begin - region.x0);
    for (int x = columns.begin; x < whole; ++x, ++seamY) {
        const float t = share(x - seamX, y - *seamY, blend_);
        if (t == kNone) continue;
        const Pixel s = image[block.sourceOf(x)];
        to[x] = t == kFull ? s : mixed(to[x], s, t);
    }
}

template class BlockPaste<PixelRGBA8>;
template class BlockPaste<PixelRGBA16>;
template class BlockPaste<PixelRGBAf>;

}  // namespace Orvane::Engine
