#pragma once

#include <functional>
#include <span>
#include <vector>

#include "engine/quilt/CandidateDraw.h"
#include "engine/quilt/OverlapError.h"
#include "engine/quilt/TextureView.h"

namespace Orvane::Engine {

/// What a block's candidates are compared with.
template <typename Pixel>
struct BlockSurroundings {
    std::span<const TextureView<Pixel>> textures;
    const Map<Pixel>* known = nullptr;       ///< counts where `weights` is positive; null: nowhere
    const Map<Pixel32f>* weights = nullptr;  ///< over the fill rectangle
    const Candidate* left = nullptr;         ///< what the block beside was taken from; or null
    int leftShift = 0;                       ///< from that block's corner to this one's, pixels
    Rows<Pixel> below;                       ///< the row below, from the block's corner on; or null
};

/// Finds the candidate of a block that agrees best with what is there already: the smallest sum of
/// the errors against the known pixels, the block to the left and the row below, the first of
/// several. Each worker has one of its own.
///
/// The sums are floats whose last bits are part of the result, and adding them up one after another
/// is what takes the time. So candidates are ranked by rough sums, which have bounds; only those
/// that the bounds cannot tell from the best one are measured exactly, in the order in which they
/// were drawn. The left neighbour's pixels are read in its texture: the part of it that a block
/// lies over is outside any seam of its own.
template <typename Pixel>
class BlockChoice {
public:
    /// `threads`: of the host.
    explicit BlockChoice(int threads) : error_(threads) {}

    /// The best of what `draw` yields, which is at least one. `stops` is asked now and then; after
    /// it said so the result is any of them.
    Candidate best(CandidateDraw& draw, const BlockPlace& place,
                   const BlockSurroundings<Pixel>& surroundings,
                   const std::function<bool()>& stops);

    TriedPositions& tried() { return tried_; }

private:
    /// A candidate that may be the best one.
    struct Contender {
        Candidate candidate;
        double least;  ///< bound of its error
    };

    void start(const BlockPlace& place, const BlockSurroundings<Pixel>& surroundings);
    void findKnown();
    void consider(const Candidate& candidate);
    double roughError(float limit) const;
    void forgetTheHopeless();
    void settle();
    float exactError(float best);
    void take(const Candidate& candidate);
    Strip<Pixel> knownStrip() const;
    Strip<Pixel> leftStrip() const;
    Strip<Pixel> belowStrip() const;

    OverlapError<Pixel> error_;
    TriedPositions tried_;

    // Of the current block.
    BlockPlace place_{};
    BlockSurroundings<Pixel> around_;
    Region known_;  ///< of the block, from its corner: holds every pixel that counts
    Rows<Pixel> knownRows_, leftRows_;
    Rows<float> weightRows_;
    std::int64_t pixels_ = 0;  ///< compared for each candidate
    Rows<Pixel> taken_;        ///< the pixels of the candidate that is looked at
    double most_ = 0.0;        ///< no less than the best candidate's error
    std::vector<Contender> contenders_;
    bool hasBest_ = false;  ///< of those that were measured exactly
    Candidate best_;
    float bestError_ = 0.0f;

    // Copies of what needs edge handling.
    std::vector<Pixel> candidateCopy_, knownCopy_, leftCopy_;
    std::vector<float> weightCopy_;
};

}  // namespace Orvane::Engine
