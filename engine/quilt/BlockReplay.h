#pragma once

#include <span>
#include <vector>

#include "engine/RenderObserver.h"
#include "engine/TemporalState.h"
#include "engine/quilt/BlockPaste.h"

namespace Orvane::Engine {

/// Replays the blocks of an earlier render from the textures of this one. Each is cut in along both
/// of its seams at once.
template <typename Pixel>
class BlockReplay {
public:
    /// Blocks are clipped at the x1 and y1 of the window. All arguments must outlive this object;
    /// the last two may be null.
    BlockReplay(const TemporalState& state, std::span<Map<Pixel>* const> textures,
                const Region& window, RenderStatus* statusRecord, RenderObserver* observer)
        : state_(state),
          textures_(textures),
          window_(window),
          statusRecord_(statusRecord),
          observer_(observer)
    {}

    /// Covers the fill bounds of the state. After an abort the target keeps what it had.
    void run(const Blend& blend, Map<Pixel>& target);

private:
    bool pasteRecords(Map<Pixel>& fillBuffer, const Blend& blend, RenderObserver* observer);
    void pasteRecord(const BlockRecord& record, const Region& region, BlockPaste<Pixel>& paste,
                     Map<Pixel>& fillBuffer);
    bool pollAbort() const { return statusRecord_ != nullptr && statusRecord_->pollAbort(); }

    const TemporalState& state_;
    std::span<Map<Pixel>* const> textures_;
    Region window_;
    RenderStatus* statusRecord_;
    RenderObserver* observer_;
    std::vector<PixelVec2f> zeroSeam_;  ///< for records of an unfinished row
};

}  // namespace Orvane::Engine
