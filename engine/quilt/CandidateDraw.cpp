#include "engine/quilt/CandidateDraw.h"

#include <algorithm>

namespace Orvane::Engine {
namespace {

/// From this number of samples on, repeated positions are skipped.
constexpr int kManySamples = 1000;
/// Repetitions left out in a row; some ten milliseconds.
constexpr int kMostLeftOut = 1 << 20;

/// The block's own seed: its candidates depend on its position and the user's seed only.
std::uint32_t blockSeed(const BlockPlace& place, int seed)
{
    // exact: 32-bit wrap-around
    return 200u * static_cast<std::uint32_t>(place.y) + 103u * static_cast<std::uint32_t>(place.x) +
           static_cast<std::uint32_t>(seed);
}

}  // namespace

CandidateDraw::CandidateDraw(const CandidateSource& source, const BlockPlace& place,
                             std::int64_t freeFrom, TriedPositions& tried)
    : source_(&source),
      place_(&place),
      freeFrom_(freeFrom),
      tried_(&tried),
      random_(blockSeed(place, source.seed))
{}

std::optional<Candidate> CandidateDraw::next()
{
    const std::int64_t all = static_cast<std::int64_t>(source_->textures.size()) * source_->samples;
    for (int leftOut = 0; drawn_ < all; ++leftOut) {
        if (drawn_ % source_->samples == 0) startTexture();
        const Candidate candidate = avoids() ? drawAvoiding() : draw();
        ++drawn_;
        if (tried_->isNew(candidate.x, candidate.y) || leftOut == kMostLeftOut) return candidate;
    }
    return {};
}

/// Tracks the positions drawn from the sample box where there are enough draws to make that pay.
void CandidateDraw::startTexture()
{
    texture_ = static_cast<int>(drawn_ / source_->samples);
    const Region& box = source_->sampleBox;
    const std::int64_t columns = std::int64_t{box.x1} - place_->width - box.x0;
    const std::int64_t rows = std::int64_t{box.y1} - place_->height - box.y0;
    // In a box smaller than the block, draws are negative.
    if (source_->samples < kManySamples || avoids() || columns < 0 || rows < 0) {
        tried_->stop();
    } else {
        tried_->start(box.x0, box.y0, columns, rows);
    }
}

Candidate CandidateDraw::draw()
{
    const Region& box = source_->sampleBox;
    ++positionsDrawn_;
    Candidate candidate{texture_, 0, 0};
    candidate.x = box.x0 + drawBelow(random_, std::int64_t{box.x1} - place_->width - box.x0);
    candidate.y = box.y0 + drawBelow(random_, std::int64_t{box.y1} - place_->height - box.y0);
    return candidate;
}

/// Draws from the whole texture until a candidate avoids the region; returns the last one drawn
/// when none does.
Candidate CandidateDraw::drawAvoiding()
{
    const MapDomain& texture = *source_->textures[static_cast<std::size_t>(texture_)];
    Candidate candidate{texture_, 0, 0};
    for (int attempt = 0; attempt < kAvoidAttempts; ++attempt) {
        ++positionsDrawn_;
        candidate.x = texture.xAxis().offset +
                      drawBelow(random_, std::int64_t{texture.width()} - place_->width);
        candidate.y = texture.yAxis().offset +
                      drawBelow(random_, std::int64_t{texture.height()} - place_->height);
        if (!source_->avoided->touches(candidate.x, candidate.y, place_->width, place_->height)) {
            return candidate;
        }
    }
    failedToAvoid_ = true;
    return candidate;
}

}  // namespace Orvane::Engine
