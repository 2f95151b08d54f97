#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "engine/RenderObserver.h"
#include "engine/TemporalState.h"
#include "engine/map/Random.h"
#include "engine/quilt/BestFitPath.h"
#include "engine/quilt/BlockPaste.h"
#include "engine/quilt/OverlapError.h"
#include "engine/quilt/TriedPositions.h"

namespace Orvane::Engine {

/// Sizes in pixels; quilting clamps them to each other.
struct BlockSettings {
    int blockW = 1, blockH = 1;
    int overlapW = 0, overlapH = 0;
    int blendW = 0, blendH = 0;
    int seamStep = 2;    ///< largest step of a seam between neighbouring rows or columns
    int numSamples = 1;  ///< candidates for each texture and block; fewer than 1 counts as 1
};

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
/// A map that cannot be allocated contributes nothing and the operation goes on, unless it is the
/// one for the whole rectangle. After an abort it ends early and the target keeps what it had.
template <typename Pixel>
class Quilt {
public:
    explicit Quilt(const QuiltInputs<Pixel>& inputs);
    QuiltResult run();

private:
    /// Where a block lies, cut at the fill rectangle's edge.
    struct BlockPlace {
        int x, y, width, height;
        bool firstInRow, firstRow;
    };
    struct Candidate {
        int texture, x, y;
    };

    void clampSizes();
    void layRow(int rowY, int height);
    void layBlock(const BlockPlace& place);
    Candidate bestCandidate(const BlockPlace& place);
    void startTrying(const BlockPlace& place, int samples);
    Candidate draw(int texture, const BlockPlace& place, Random& random);
    bool drawAvoiding(Random& random, const BlockPlace& place, Candidate& candidate) const;
    bool touchesFillRegion(const Candidate& candidate, const BlockPlace& place) const;
    float candidateError(const BlockPlace& place, const Candidate& candidate);
    float errorAgainst(const Map<Pixel>& laid, const BlockPlace& place, const Candidate& candidate,
                       Map<Pixel32f>& error, int width, int height);
    void findVerticalSeam(const BlockPlace& place, const Candidate& best);
    void pasteBlock(const BlockPlace& place, const Candidate& best);
    void record(const BlockPlace& place, const Candidate& best);
    void joinRow(int rowY, int height);
    void recordRowSeam(std::size_t firstRecord);
    std::uint32_t blockSeed(const BlockPlace& place) const;
    void reportProgress(int yDone) const;
    bool isAborted() const;
    int strideX() const { return blocks_.blockW - blocks_.overlapW; }
    int strideY() const { return blocks_.blockH - blocks_.overlapH; }

    QuiltInputs<Pixel> in_;
    BlockSettings blocks_;   ///< clamped once the quilt runs
    bool avoids_;            ///< until that proves impossible
    Map<Pixel> fillBuffer_;  ///< finished rows, over the fill rectangle
    Map<Pixel> rowBuffer_;   ///< the row being laid
    // Work maps keep their storage from block to block.
    Map<Pixel32f> blockError_, columnError_, rowError_, columnCost_, rowCost_;
    std::vector<PixelVec2f> seamV_, seamH_, zeros_;
    TriedPositions tried_;
    OverlapError<Pixel> overlapError_;
    BlockPaste<Pixel> paste_;
};

}  // namespace Orvane::Engine
