#pragma once

#include <memory>
#include <span>
#include <vector>

#include "engine/RenderObserver.h"
#include "engine/TemporalState.h"
#include "engine/pass/SharedWork.h"
#include "engine/quilt/BestFitPath.h"
#include "engine/quilt/BlockChoice.h"
#include "engine/quilt/BlockGrid.h"
#include "engine/quilt/BlockPaste.h"

namespace Orvane::Engine {

/// The inputs of a quilt. Maps are borrowed for one call.
template <typename Pixel>
struct QuiltInputs {
    Region fillRect;   ///< the area to cover
    Region wanted;     ///< where pixels are read; elsewhere some may be left out. Empty: all
    Region sampleBox;  ///< where candidates come from; may be empty
    std::span<Map<Pixel>* const> textures;  ///< at least one
    const Map<Pixel>* source = nullptr;     ///< known pixels, where `weightMap` is positive
    Map<Pixel>* target = nullptr;           ///< written over the fill rectangle
    Map<Pixel>* laid =
        nullptr;  ///< if not null, becomes the fill rectangle instead, storing `wanted`
    const Map<Pixel32f>* fillMask = nullptr;   ///< nonzero is to be filled; may be null
    const Map<Pixel32f>* weightMap = nullptr;  ///< positive on known pixels; unused with fillAll
    bool fillAll = true;                       ///< compare no candidate with the source
    bool avoidFillRegion = false;              ///< reject candidates that touch the fill mask
    int seed = 0;
    BlockSettings blocks;
    BlockList* blockList = nullptr;        ///< gets a record for each block; may be null
    RenderStatus* statusRecord = nullptr;  ///< may be null
    RenderObserver* observer = nullptr;    ///< may be null
};

/// The outcome of a quilt.
struct QuiltResult {
    bool hasRoom = true;          ///< false: out of memory, nothing placed or recorded
    BlockSize blockSize;          ///< after clamping
    bool gaveUpAvoiding = false;  ///< candidates that touch the fill mask were used
};

/// Block quilting (Efros and Freeman 2001, section 2): covers a rectangle with blocks of texture in
/// overlapping rows, from the corner with the smallest x and y. Each block is the best of a number
/// of random candidates; the blocks of a row, and the rows, are joined along seams of minimum
/// error.
///
/// `BlockGrid` schedules the blocks for several threads. A block is pasted over the one to its left
/// immediately. The strip in which a row overlaps the one below is stored separately, since both
/// rows are read there until the upper one is complete and its seam is found. The row above reads
/// only outside that strip. Where only part of the fill rectangle is wanted, strips hold the pixels
/// of both rows and nothing else is stored outside of that part.
///
/// An abort ends the quilt early and leaves the target unchanged.
template <typename Pixel>
class Quilt {
public:
    explicit Quilt(const QuiltInputs<Pixel>& inputs);
    QuiltResult run();

private:
    /// The buffers of one worker.
    struct Workspace {
        explicit Workspace(int threads) : choice(threads) {}

        BlockChoice<Pixel> choice;
        SeamStrip strip;
        std::vector<float> errors;
        std::vector<int> path;
        std::vector<Pixel> copy, besideCopy;
    };
    /// The first candidate that could not avoid the fill region, from which on drawing is free: its
    /// block in row order, and the number of candidates that this block drew before.
    struct AvoidFailure {
        std::size_t block;
        std::int64_t drawn;
    };

    /// The columns [begin, end) of a block's row, and the pixel for the first of them.
    struct KeptRow {
        Pixel* pixels;
        int begin, end;
    };

    void findWanted();
    void clampSizes();
    bool makeRoom();
    void findAvoidFailure();
    bool placeBlocks();
    void placeRun(const BlockRun& run, Workspace& workspace);
    void placeBlock(const BlockPlace& place, Workspace& workspace);
    std::int64_t freeFrom(std::size_t block) const;
    void findVerticalSeam(const BlockPlace& place, const Rows<Pixel>& block,
                          Workspace& workspace) const;
    void pasteBlock(const BlockPlace& place, const Rows<Pixel>& block, std::span<const int> seam);
    KeptRow keptRow(const BlockPlace& place, int y);
    void joinRow(int row, Workspace& workspace);
    void pasteStrip(int row, std::span<const int> seam);
    void pasteStripRow(int row, int y, std::span<const int> cuts, std::span<const float> ramp);
    void record(const BlockPlace& place, const Candidate& best, std::span<const int> seam);
    void recordRowSeam(int row, std::span<const int> seam);
    void reportRows(int rows);
    Workspace& workspace(int worker);
    /// The rows of `strips_` that belong to a row of blocks: as it has them, then maybe as the row
    /// below has them.
    int stripHeight() const { return (keepsLower_ ? 2 : 1) * blocks_.overlapH; }
    int stripStart(int row) const { return row % openStrips_ * stripHeight(); }
    Rows<Pixel> upperStrip(int row) const;
    Rows<Pixel> lowerStrip(int row) const;
    Rows<Pixel> below(const BlockPlace& place) const;
    bool isAvoiding() const { return in_.avoidFillRegion && in_.fillMask != nullptr; }

    QuiltInputs<Pixel> in_;
    BlockSettings blocks_;  ///< clamped once the quilt runs
    Region wanted_;         ///< of the fill rectangle
    int endRow_ = 0;        ///< the rows of blocks from here on are not wanted
    SharedWork work_;
    BlockGrid grid_;
    std::vector<TextureView<Pixel>> textures_;
    std::vector<const MapDomain*> textureDomains_;
    std::unique_ptr<RegionSums> avoided_;
    CandidateSource candidates_;
    AvoidFailure avoidFailure_;
    std::vector<std::unique_ptr<Workspace>> workspaces_;
    std::vector<Candidate> chosen_;  ///< for each block, row by row
    Map<Pixel> fillBuffer_;          ///< over the fill rectangle; stores what is wanted of it
    Map<Pixel> strips_;              ///< in turn, those of the rows that are being laid
    int openStrips_ = 1;             ///< how many there are
    bool keepsLower_ = false;        ///< each holds what the row below has there, too
    int reportedRows_ = 0;
};

}  // namespace Orvane::Engine
