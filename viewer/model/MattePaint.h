#pragma once

/// A painted matte in memory, and the steps in which it was painted. Pixels count from the lower
/// left corner of the source's display window, y upwards.

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "picture/Picture.h"

namespace Tesseret::Viewer {

/// The bytes of the tiles that one step changed: the earlier ones, or the later ones while the step
/// is undone.
struct MattePatch {
    struct Tile {
        OfxRectI box;
        std::vector<std::uint8_t> bytes;  ///< row by row
    };
    std::vector<Tile> tiles;
    std::uint64_t revision = 0;  ///< of the matte with these bytes

    bool empty() const { return tiles.empty(); }
    std::size_t bytes() const;
};

class MattePaint {
public:
    /// Nothing is masked.
    explicit MattePaint(const OfxRectI& bounds);

    /// 8-bit alpha alone; 255 is fully masked.
    const Picture& picture() const { return picture_; }
    OfxRectI bounds() const { return picture_.bounds(); }
    /// Changes with every step, and returns with undo. 0 as made and after `reset`.
    std::uint64_t revision() const { return revision_; }
    /// The smallest box round all masked pixels; empty when there is none.
    OfxRectI maskedBox() const;

    /// Starts again from a matte of alpha alone, which may cover a part of the bounds.
    void reset(const Picture& matte);

    /// Everything between `begin` and `end` is one step.
    void begin();
    bool isOpen() const { return isOpen_; }
    /// What undoes the step by `swap`; empty when it changed nothing.
    MattePatch end();

    /// Within a step: `work` may change the pixels of the box, which is clipped at the bounds and
    /// left out when nothing of it remains.
    void change(const OfxRectI& box, const std::function<void(Picture&, const OfxRectI&)>& work);
    /// Outside of a step: exchanges the patch's bytes with the matte's.
    void swap(MattePatch& patch);

    /// The box round everything that changed since the last call; all of it at the first.
    OfxRectI takeTouched();

private:
    OfxRectI tileBox(int column, int row) const;
    void keep(const OfxRectI& box);
    void touch(const OfxRectI& box);

    Picture picture_;
    bool isOpen_ = false;
    std::map<std::pair<int, int>, std::vector<std::uint8_t>>
        kept_;  ///< of the step, by row and column
    std::uint64_t revision_ = 0, lastRevision_ = 0;
    OfxRectI touched_;
    mutable std::optional<OfxRectI> masked_;
};

/// The smallest box round both; an empty one counts for nothing.
OfxRectI unionOf(const OfxRectI& a, const OfxRectI& b);

}  // namespace Tesseret::Viewer
