#pragma once

#include <optional>

#include "engine/map/Random.h"
#include "engine/quilt/BlockGrid.h"
#include "engine/quilt/RegionSums.h"
#include "engine/quilt/TriedPositions.h"

namespace Orvane::Engine {

/// A position in a texture that a block may be copied from.
struct Candidate {
    int texture = 0;
    int x = 0, y = 0;  ///< of the corner with the smallest x and y
    friend bool operator==(const Candidate&, const Candidate&) = default;
};

/// The source of all candidates of a quilt.
struct CandidateSource {
    Region sampleBox;                            ///< may be empty
    std::span<const MapDomain* const> textures;  ///< at least one
    const RegionSums* avoided = nullptr;         ///< candidates must not touch it; may be null
    int samples = 1;                             ///< for each texture
    int seed = 0;
};

/// Draws the candidates of one block, texture by texture. They depend on the block's position and
/// the user's seed only.
class CandidateDraw {
public:
    /// The number of draws for a candidate that avoids the region.
    static constexpr int kAvoidAttempts = 999;

    /// Draws freely from candidate `freeFrom` on, where avoiding was given up. `tried` keeps its
    /// storage from block to block.
    CandidateDraw(const CandidateSource& source, const BlockPlace& place, std::int64_t freeFrom,
                  TriedPositions& tried);

    /// The next candidate; none at the end. Known repetitions are left out, but for one in many, so
    /// that the caller can poll between them.
    std::optional<Candidate> next();
    /// The number of candidates drawn so far, repetitions included.
    std::int64_t drawn() const { return drawn_; }
    /// The number of positions drawn for them.
    std::int64_t positionsDrawn() const { return positionsDrawn_; }
    /// Whether the last candidate touches the region to avoid.
    bool failedToAvoid() const { return failedToAvoid_; }

private:
    bool avoids() const { return source_->avoided != nullptr && drawn_ < freeFrom_; }
    void startTexture();
    Candidate draw();
    Candidate drawAvoiding();

    const CandidateSource* source_;
    const BlockPlace* place_;
    std::int64_t freeFrom_;
    TriedPositions* tried_;
    Random random_;
    std::int64_t drawn_ = 0;
    std::int64_t positionsDrawn_ = 0;
    int texture_ = 0;
    bool failedToAvoid_ = false;
};

}  // namespace Orvane::Engine
