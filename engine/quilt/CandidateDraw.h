#pragma once

#include <optional>

#include "engine/map/Random.h"
#include "engine/quilt/BlockGrid.h"
#include "engine/quilt/RegionSums.h"
#include "engine/quilt/TriedPositions.h"

namespace Orvane::Engine {

/// A place in a texture that a block may be taken from.
struct Candidate {
    int texture = 0;
    int x = 0, y = 0;  ///< of the corner with the smallest x and y
    friend bool operator==(const Candidate&, const Candidate&) = default;
};

/// Where candidates come from; the same for all blocks of a quilt.
struct CandidateSource {
    Region sampleBox;                            ///< may be empty
    std::span<const MapDomain* const> textures;  ///< at least one
    const RegionSums* avoided = nullptr;         ///< candidates keep clear of it; null: of nothing
    int samples = 1;                             ///< for each texture
    int seed = 0;
};

/// Draws the candidates of one block, one after another, textures in order. Which ones these are
/// depends on the block's place and the user's seed only.
class CandidateDraw {
public:
    /// How often a candidate that keeps clear of the avoided region is looked for.
    static constexpr int kAvoidAttempts = 999;

    /// Draws freely from the `freeFrom`th candidate on: avoiding has been given up there. `tried`
    /// keeps its storage from block to block.
    CandidateDraw(const CandidateSource& source, const BlockPlace& place, std::int64_t freeFrom,
                  TriedPositions& tried);

    /// The next candidate that was not drawn before, as far as that is known; none at the end.
    std::optional<Candidate> next();
    /// How many were drawn so far, those drawn before among them.
    std::int64_t drawn() const { return drawn_; }
    /// Whether the last candidate touches the region that it should keep clear of.
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
    int texture_ = 0;
    bool failedToAvoid_ = false;
};

}  // namespace Orvane::Engine
