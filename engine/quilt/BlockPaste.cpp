#include "engine/quilt/BlockPaste.h"

#include <algorithm>

#include "engine/map/ExactMath.h"
#include "engine/map/MapRow.h"
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
void BlockPaste<Pixel>::begin()
{
    const Region& region = this->region();
    seamY_.resize(static_cast<std::size_t>(std::max(region.x1 - region.x0, 0)));
    highestSeamY_ = region.y0;
    for (std::size_t i = 0; i < seamY_.size(); ++i) {
        seamY_[i] = cutAt(region.y0, seams_.horizontal[i].y);
        highestSeamY_ = std::max(highestSeamY_, seamY_[i]);
    }
}

template <typename Pixel>
void BlockPaste<Pixel>::processPass()
{
    const Region& region = this->region();
    const auto [yBegin, yEnd] = this->threadRows();
    for (int y = yBegin; y < yEnd; ++y) {
        const int seamX =
            cutAt(region.x0, seams_.vertical[static_cast<std::size_t>(y - region.y0)].x);
        if (blend_.width == 0 && blend_.height == 0) {
            cutRow(y, seamX);
        } else {
            blendRow(y, seamX);
        }
    }
}

/// Pastes one row along hard cuts.
template <typename Pixel>
void BlockPaste<Pixel>::cutRow(int y, int seamX)
{
    const Region& region = this->region();
    const RowReader image(this->other(), srcY_ + y - region.y0);
    const int begin = std::max(seamX, region.x0);
    const int count = region.x1 - begin;
    if (count <= 0) return;
    const int shift = srcX_ - region.x0;
    Pixel* row = RowWriter(this->target(), y).from(begin);
    const Pixel* span = image.span(begin + shift, count);
    if (span != nullptr && y >= highestSeamY_) {
        std::copy_n(span, count, row);
        return;
    }
    const int* seamY = seamY_.data() + (begin - region.x0);
    for (int i = 0; i < count; ++i) {
        if (y >= seamY[i]) row[i] = span != nullptr ? span[i] : image[begin + shift + i];
    }
}

/// Pastes one row across blend bands.
template <typename Pixel>
void BlockPaste<Pixel>::blendRow(int y, int seamX)
{
    const Region& region = this->region();
    const RowReader image(this->other(), srcY_ + y - region.y0);
    RowWriter row(this->target(), y);
    const int* seamY = seamY_.data();
    for (int x = region.x0; x < region.x1; ++x, ++seamY) {
        const float t = share(x - seamX, y - *seamY, blend_);
        if (t == kNone) continue;
        const Pixel s = image[srcX_ + x - region.x0];
        row[x] = t == kFull ? s : mixed(row[x], s, t);
    }
}

template class BlockPaste<PixelRGBA8>;
template class BlockPaste<PixelRGBA16>;
template class BlockPaste<PixelRGBAf>;

}  // namespace Orvane::Engine
