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

    /// Makes a map of the fill bounds of the state, as far as `target` has their rows, with all
    /// blocks in it. It has no pixels after an abort, and without memory.
    Map<Pixel> run(const Blend& blend, const MapDomain& target);

private:
    /// A block to be placed again.
    struct Placed {
        const BlockRecord* record;
        const Map<Pixel>* texture;
        typename BlockPaste<Pixel>::Block block;
    };

    void findPlaced();
    void pasteBand(const RowRange& rows, const Blend& blend, Map<Pixel>& fillBuffer) const;
    void reportBlocks() const;

    const TemporalState& state_;
    std::span<Map<Pixel>* const> textures_;
    Region window_;
    RenderStatus* statusRecord_;
    RenderObserver* observer_;
    std::vector<Placed> placed_;        ///< in the order of the records
    std::vector<PixelVec2f> zeroSeam_;  ///< for records of an unfinished row
};

}  // namespace Orvane::Engine
