#include "engine/quilt/BlockReplay.h"

#include "engine/filter/FillAndCopy.h"
#include "engine/map/ExactMath.h"
#include "engine/quilt/BlockLayout.h"

namespace Orvane::Engine {
namespace {

void reportBlock(const BlockRecord& record, const Region& region, RenderObserver& observer)
{
    observer.blockLaid({region.x0, region.y0, region.x1 - region.x0, region.y1 - region.y0,
                        truncateToInt(record.srcX), truncateToInt(record.srcY),
                        record.textureIndex});
}

}  // namespace

template <typename Pixel>
void BlockReplay<Pixel>::run(const Blend& blend, Map<Pixel>& target)
{
    const Region& bounds = state_.fillBounds;
    Map<Pixel> fillBuffer;
    fillBuffer.setSize(bounds.x1 - bounds.x0, bounds.y1 - bounds.y0);
    fillBuffer.placeAt(bounds.x0, bounds.y0);
    fillBuffer.allocate();
    // Pixels that no record covers, as when the window has shrunk, are black and transparent.
    ConstantFill<Pixel> clear{Pixel{}};
    clear.setStatusRecord(statusRecord_);
    clear.process(&fillBuffer);

    const bool blends = blend.width != 0 || blend.height != 0;
    // Blending reads pixels that no earlier record has written: at the border, and where blends are
    // wider than half the overlap. Pasting everything along hard cuts first fills them with
    // texture, so that no dark fringe appears.
    if (blends && !pasteRecords(fillBuffer, {}, nullptr)) return;
    if (!pasteRecords(fillBuffer, blend, observer_)) return;

    RowCopy<Pixel> copy;
    copy.setStatusRecord(statusRecord_);
    copy.setRegion(bounds);
    copy.process(&fillBuffer, &target);
}

/// Pastes all records; false after an abort.
template <typename Pixel>
bool BlockReplay<Pixel>::pasteRecords(Map<Pixel>& fillBuffer, const Blend& blend,
                                      RenderObserver* observer)
{
    BlockPaste<Pixel> paste;
    paste.setStatusRecord(statusRecord_);
    paste.setBlend(blend);
    for (const BlockRecord& record : state_.blockList) {
        if (pollAbort()) return false;
        const Region region = placedRegion(record, state_.savedBlockSize, window_);
        if (!isPlaced(record, region, textures_.size())) continue;
        pasteRecord(record, region, paste, fillBuffer);
        if (observer != nullptr) reportBlock(record, region, *observer);
    }
    return !pollAbort();
}

template <typename Pixel>
void BlockReplay<Pixel>::pasteRecord(const BlockRecord& record, const Region& region,
                                     BlockPaste<Pixel>& paste, Map<Pixel>& fillBuffer)
{
    zeroSeam_.resize(static_cast<std::size_t>(region.x1 - region.x0), {0.0f, 0.0f});
    paste.setSourcePosition(truncateToInt(record.srcX), truncateToInt(record.srcY));
    paste.setSeams(
        {.horizontal = record.seamH.empty() ? zeroSeam_ : record.seamH, .vertical = record.seamV});
    paste.setRegion(region);
    paste.process(*textures_[static_cast<std::size_t>(record.textureIndex)], fillBuffer);
}

template class BlockReplay<PixelRGBA8>;
template class BlockReplay<PixelRGBA16>;
template class BlockReplay<PixelRGBAf>;

}  // namespace Orvane::Engine
