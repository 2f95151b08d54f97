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

/// What quilting works on. Maps are borrowed for one call.
template <typename Pixel>
struct QuiltInputs {
    Region fillRect;                           ///< the area to cover
    Region sampleBox;                          ///< where candidates come from; may be empty
    std::span<Map<Pixel>* const> textures;     ///< at least one
    const Map<Pixel>* source = nullptr;        ///< known pixels, where `weightMap` is positive
    Map<Pixel>* target = nullptr;              ///< is written over the fill rectangle
    const Map<Pixel32f>* fillMask = nullptr;   ///< nonzero is to be filled; null without mask
    const Map<Pixel32f>* weightMap = nullptr;  ///< positive on known pixels; not used with fillAll
    bool fillAll = true;           ///< nothing is known: no candidate is compared to source
    bool avoidFillRegion = false;  ///< reject candidates that touch the fill mask
    int seed = 0;
    BlockSettings blocks;
    BlockList* blockList = nullptr;        ///< gets a record for each block; may be null
    RenderStatus* statusRecord = nullptr;  ///< may be null
    RenderObserver* observer = nullptr;    ///< may be null
};

/// What became of a quilt.
struct QuiltResult {
    bool hasRoom = true;          ///< false: nothing is placed or recorded, for want of memory
    BlockSize blockSize;          ///< as it was used, clamped
    bool gaveUpAvoiding = false;  ///< candidates that touch the fill mask had to be taken
};

/// Block quilting (Efros and Freeman 2001, section 2): covers a rectangle with blocks of texture in
/// overlapping rows, from the corner with the smallest x and y. Each block is the best of a number
/// of random candidates; blocks of a row, and rows, are joined along seams of least error.
///
/// `BlockGrid` says which blocks can be worked side by side. Every block is pasted over the one to
/// its left at once; but the strip in which a row lies over the one below is kept apart, since both
/// rows are read there until the upper one is complete and its seam is found. What the row above
/// reads lies outside that strip.
///
/// After an abort it ends early and the target keeps what it had.
template <typename Pixel>
class Quilt {
public:
    explicit Quilt(const QuiltInputs<Pixel>& inputs);
    QuiltResult run();

private:
    /// What one worker needs for itself.
    struct Bench {
        explicit Bench(int threads) : choice(threads) {}

        BlockChoice<Pixel> choice;
        SeamStrip strip;
        std::vector<float> errors;
        std::vector<int> path;
        std::vector<Pixel> copy, besideCopy;
    };
    /// The first candidate that could not keep clear of the fill region, and so where drawing
    /// becomes free: a block in the order of rows, and how many candidates it drew until then.
    struct Surrender {
        std::size_t block;
        std::int64_t drawn;
    };

    void clampSizes();
    bool makeRoom();
    void findSurrender();
    bool placeBlocks();
    void placeRun(const BlockRun& run, Bench& bench);
    void placeBlock(const BlockPlace& place, Bench& bench);
    std::int64_t freeFrom(std::size_t block) const;
    void findVerticalSeam(const BlockPlace& place, const Rows<Pixel>& block, Bench& bench) const;
    void pasteBlock(const BlockPlace& place, const Rows<Pixel>& block, std::span<const int> seam);
    void joinRow(int row, Bench& bench);
    void pasteStrip(int row, std::span<const int> seam);
    void record(const BlockPlace& place, const Candidate& best, std::span<const int> seam);
    void recordRowSeam(int row, std::span<const int> seam);
    void reportRows(int rows);
    Bench& bench(int worker);
    Pixel* pixelsAt(const BlockPlace& place, int y);
    Pixel* stripAt(int row, int y);
    Rows<Pixel> below(const BlockPlace& place) const;
    bool isAvoiding() const { return in_.avoidFillRegion && in_.fillMask != nullptr; }

    QuiltInputs<Pixel> in_;
    BlockSettings blocks_;  ///< clamped once the quilt runs
    SharedWork work_;
    BlockGrid grid_;
    std::vector<TextureView<Pixel>> textures_;
    std::vector<const MapDomain*> textureDomains_;
    std::unique_ptr<RegionSums> avoided_;
    CandidateSource candidates_;
    Surrender surrender_;
    std::vector<std::unique_ptr<Bench>> benches_;
    std::vector<Candidate> chosen_;  ///< for each block, row by row
    Map<Pixel> fillBuffer_;          ///< over the fill rectangle
    Map<Pixel> strips_;              ///< of each row but the first, one above the other
    int reportedRows_ = 0;
};

}  // namespace Orvane::Engine
