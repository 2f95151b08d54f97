#include "engine/quilt/BlockReplay.h"

#include "engine/filter/FillAndCopy.h"
#include "engine/map/ExactMath.h"
#include "engine/quilt/BlockLayout.h"

namespace Orvane::Engine {
namespace {

void tellBlock(const BlockRecord& record, const Region& place, RenderObserver& observer)
{
    observer.blockLaid({place.x0, place.y0, place.x1 - place.x0, place.y1 - place.y0,
                        truncateToInt(record.srcX), truncateToInt(record.srcY),
                        record.textureIndex});
}

}  // namespace

template <typename Pixel>
void BlockReplay<Pixel>::run(const Blend& blend, Map<Pixel>& target)
{
    const FillBounds& bounds = state_.fillBounds;
    Map<Pixel> fillBuffer;
    fillBuffer.setSize(bounds.x1 - bounds.x0, bounds.y1 - bounds.y0);
    fillBuffer.placeAt(bounds.x0, bounds.y0);
    fillBuffer.allocate();
    // What no record covers, as when the window has shrunk, is black and transparent.
    ConstantFill<Pixel> clear{Pixel{}};
    clear.setStatusRecord(statusRecord_);
    clear.process(&fillBuffer);

    const bool blends = blend.width != 0 || blend.height != 0;
    // Blending reaches pixels that no earlier record has written: at the border, and where the
    // bands are wider than half the overlap. Laying everything along hard cuts first gives them the
    // texture they will have anyway, so that no dark fringe appears.
    if (blends && !layRecords(fillBuffer, {}, nullptr)) return;
    if (!layRecords(fillBuffer, blend, observer_)) return;

    RowCopy<Pixel> copy;
    copy.setStatusRecord(statusRecord_);
    copy.setRegion({bounds.x0, bounds.y0, bounds.x1, bounds.y1});
    copy.process(&fillBuffer, &target);
}

/// Whether all records were laid before an abort.
template <typename Pixel>
bool BlockReplay<Pixel>::layRecords(Map<Pixel>& fillBuffer, const Blend& blend,
                                    RenderObserver* observer)
{
    BlockPaste<Pixel> paste;
    paste.setStatusRecord(statusRecord_);
    paste.setBlend(blend);
    for (const BlockRecord& record : state_.blockList) {
        if (pollAbort()) return false;
        const Region place = laidRegion(record, state_.savedBlockSize, window_);
        if (!isLaid(record, place, textures_.size())) continue;
        layRecord(record, place, paste, fillBuffer);
        if (observer != nullptr) tellBlock(record, place, *observer);
    }
    return !pollAbort();
}

template <typename Pixel>
void BlockReplay<Pixel>::layRecord(const BlockRecord& record, const Region& place,
                                   BlockPaste<Pixel>& paste, Map<Pixel>& fillBuffer)
{
    zeroSeam_.resize(static_cast<std::size_t>(place.x1 - place.x0), {0.0f, 0.0f});
    paste.setSourcePosition(truncateToInt(record.srcX), truncateToInt(record.srcY));
    paste.setSeams(
        {.horizontal = record.seamH.empty() ? zeroSeam_ : record.seamH, .vertical = record.seamV});
    paste.setRegion(place);
    paste.process(*textures_[static_cast<std::size_t>(record.textureIndex)], fillBuffer);
}

template class BlockReplay<PixelRGBA8>;
template class BlockReplay<PixelRGBA16>;
template class BlockReplay<PixelRGBAf>;

}  // namespace Orvane::Engine
