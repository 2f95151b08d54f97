#include "engine/quilt/BlockReplay.h"

#include <algorithm>

#include "engine/map/ExactMath.h"
#include "engine/pass/SharedWork.h"
#include "engine/quilt/BlockLayout.h"

namespace Orvane::Engine {
namespace {

/// Rows that a worker takes at once: few enough to stay in the cache while blocks are pasted.
constexpr int kBandRows = 32;

}  // namespace

template <typename Pixel>
Map<Pixel> BlockReplay<Pixel>::run(const Blend& blend, const MapDomain& target)
{
    const Region& bounds = state_.fillBounds;
    const Region stored = target.storedExtent();
    const RowRange rows{std::max(bounds.y0, stored.y0), std::min(bounds.y1, stored.y1)};
    Map<Pixel> fillBuffer;
    if (!rows.isEmpty()) {
        fillBuffer.setSize(bounds.x1 - bounds.x0, rows.end - rows.begin);
        fillBuffer.placeAt(bounds.x0, rows.begin);
        fillBuffer.allocate();
    }
    if (!fillBuffer.isUsable()) {
        MapProcessor::reportMap("Sampler", "bogus");
        return {};
    }
    findPlaced();
    // Records depend on each other pixel by pixel only, so each worker goes through all of them.
    SharedWork work(statusRecord_);
    const int bands = (rows.end - rows.begin - 1) / kBandRows + 1;
    const bool isDone = work.run(bands, [&](int band, int) {
        const int begin = rows.begin + band * kBandRows;
        pasteBand({begin, std::min(begin + kBandRows, rows.end)}, blend, fillBuffer);
    });
    if (!isDone) return {};
    reportBlocks();
    return fillBuffer;
}

template <typename Pixel>
void BlockReplay<Pixel>::findPlaced()
{
    placed_.clear();
    int widest = 0;
    for (const BlockRecord& record : state_.blockList) {
        const Region region = placedRegion(record, state_.savedBlockSize, window_);
        if (!isPlaced(record, region, textures_.size())) continue;
        widest = std::max(widest, region.x1 - region.x0);
        placed_.push_back({.record = &record,
                           .texture = textures_[static_cast<std::size_t>(record.textureIndex)],
                           .block = {.region = region,
                                     .srcX = truncateToInt(record.srcX),
                                     .srcY = truncateToInt(record.srcY),
                                     .seams = {record.seamH, record.seamV}}});
    }
    zeroSeam_.assign(static_cast<std::size_t>(widest), {0.0f, 0.0f});
    for (Placed& placed : placed_) {
        if (placed.record->seamH.empty()) placed.block.seams.horizontal = zeroSeam_;
    }
}

/// Pastes all blocks, in order, as far as they lie in some rows.
template <typename Pixel>
void BlockReplay<Pixel>::pasteBand(const RowRange& rows, const Blend& blend,
                                   Map<Pixel>& fillBuffer) const
{
    const Region& bounds = state_.fillBounds;
    for (int y = rows.begin; y < rows.end; ++y) {
        // Pixels that no record covers, as when the window has shrunk, are black and transparent.
        std::fill_n(RowWriter(fillBuffer, y).from(bounds.x0), bounds.x1 - bounds.x0, Pixel{});
    }
    const auto pasteAll = [&](BlockPaste<Pixel> paste) {
        for (const Placed& placed : placed_) {
            paste.run(*placed.texture, placed.block, rows, fillBuffer);
        }
    };
    // Blending reads pixels that no earlier record has written: at the border, and where blends are
    // wider than half the overlap. Pasting everything along hard cuts first fills them with
    // texture, so that no dark fringe appears.
    const bool blends = blend.width != 0 || blend.height != 0;
    if (blends) pasteAll(BlockPaste<Pixel>(Blend{}));
    pasteAll(BlockPaste<Pixel>(blend));
}

template <typename Pixel>
void BlockReplay<Pixel>::reportBlocks() const
{
    if (observer_ == nullptr) return;
    for (const Placed& placed : placed_) {
        const Region& region = placed.block.region;
        observer_->blockLaid({region.x0, region.y0, region.x1 - region.x0, region.y1 - region.y0,
                              placed.block.srcX, placed.block.srcY, placed.record->textureIndex});
    }
}

template class BlockReplay<PixelRGBA8>;
template class BlockReplay<PixelRGBA16>;
template class BlockReplay<PixelRGBAf>;

}  // namespace Orvane::Engine
