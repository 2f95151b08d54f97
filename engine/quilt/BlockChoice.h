#pragma once

#include <functional>
#include <span>
#include <vector>

#include "engine/quilt/CandidateDraw.h"
#include "engine/quilt/OverlapError.h"
#include "engine/quilt/TextureView.h"

namespace Orvane::Engine {

/// The pixels that a block's candidates are compared with.
template <typename Pixel>
struct BlockSurroundings {
    std::span<const TextureView<Pixel>> textures;
    const Map<Pixel>* known = nullptr;       ///< used where `weights` is positive; may be null
    const Map<Pixel32f>* weights = nullptr;  ///< over the fill rectangle
    const Candidate* left = nullptr;         ///< the choice for the block to the left; may be null
    int leftShift = 0;                       ///< from that block's corner to this one's, pixels
    Rows<Pixel> below;  ///< the row below, from the block's corner on; may be null
};

/// Finds the best candidate of a block: the smallest sum of the errors against the known pixels,
/// the block to the left and the row below; ties go to the first. Each worker has one of its own.
///
/// The last bits of these float sums are part of the result, and summing in their fixed order is
/// slow. So candidates are ranked by rough sums with known bounds; only those whose bounds overlap
/// the best one's are measured exactly, in the order in which they were drawn. The left neighbour's
/// pixels are read from its texture: its own seam does not reach the part that a block overlaps.
template <typename Pixel>
class BlockChoice {
public:
    /// `threads` is the number of host threads.
    explicit BlockChoice(int threads) : error_(threads) {}

    /// The best of the candidates that `draw` returns, of which there is at least one. Polls
    /// `stops` at intervals; once it returns true the result is any of them.
    Candidate best(CandidateDraw& draw, const BlockPlace& place,
                   const BlockSurroundings<Pixel>& surroundings,
                   const std::function<bool()>& stops);

    TriedPositions& tried() { return tried_; }

private:
    /// A candidate that may be the best.
    struct Contender {
        Candidate candidate;
        double lower;  ///< bound of its error
    };

    void start(const BlockPlace& place, const BlockSurroundings<Pixel>& surroundings);
    void findKnown();
    void consider(const Candidate& candidate);
    double roughError(float limit) const;
    void dropInferior();
    void settle();
    float exactError(float best);
    void load(const Candidate& candidate);
    Strip<Pixel> knownStrip() const;
    Strip<Pixel> leftStrip() const;
    Strip<Pixel> belowStrip() const;

    OverlapError<Pixel> error_;
    TriedPositions tried_;

    // Of the current block.
    BlockPlace place_{};
    BlockSurroundings<Pixel> around_;
    Region known_;  ///< relative to the block's corner; holds every pixel used
    Rows<Pixel> knownRows_, leftRows_;
    Rows<float> weightRows_;
    std::int64_t pixels_ = 0;  ///< compared for each candidate
    Rows<Pixel> loaded_;       ///< the pixels of the current candidate
    double upper_ = 0.0;       ///< bound of the best candidate's error
    std::vector<Contender> contenders_;
    bool hasBest_ = false;  ///< among those measured exactly
    Candidate best_;
    float bestError_ = 0.0f;

    // Copies of pixels that need edge handling.
    std::vector<Pixel> candidateCopy_, knownCopy_, leftCopy_;
    std::vector<float> weightCopy_;
};

}  // namespace Orvane::Engine
