#pragma once

#include <span>
#include <vector>

#include "engine/RenderObserver.h"
#include "engine/TemporalState.h"
#include "engine/quilt/BlockPaste.h"

namespace Orvane::Engine {

/// Lays the blocks of an earlier render again, from the textures of this one. Each is cut against
/// the block before it and the row below it in one step.
template <typename Pixel>
class BlockReplay {
public:
    /// Blocks are cut where the window ends to the right and above. Everything is borrowed for as
    /// long as this lives; the last two may be null.
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
    bool layRecords(Map<Pixel>& fillBuffer, const Blend& blend, RenderObserver* observer);
    void layRecord(const BlockRecord& record, const Region& place, BlockPaste<Pixel>& paste,
                   Map<Pixel>& fillBuffer);
    bool pollAbort() const { return statusRecord_ != nullptr && statusRecord_->pollAbort(); }

    const TemporalState& state_;
    std::span<Map<Pixel>* const> textures_;
    Region window_;
    RenderStatus* statusRecord_;
    RenderObserver* observer_;
    std::vector<PixelVec2f> zeroSeam_;  ///< for records of a row that was never finished
};

}  // namespace Orvane::Engine
