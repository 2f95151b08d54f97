#include "engine/quilt/Quilt.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include "engine/filter/FillAndCopy.h"
#include "engine/map/ExactMath.h"
#include "engine/map/MapRow.h"

namespace Orvane::Engine {
namespace {

/// How often a candidate that keeps clear of the fill region is looked for.
constexpr int kAvoidAttempts = 999;

/// From so many samples on, positions drawn again are not measured again.
constexpr int kManySamples = 1000;

constexpr const char* kCannotAvoid = "Cannot avoid matte!\n";

/// Gives a work map a size, keeping its storage when it has that size already.
template <typename Pixel>
void shape(Map<Pixel>& map, int width, int height)
{
    if (map.width() == width && map.height() == height) return;
    map.setSize(width, height);
    map.allocate();
}

}  // namespace

template <typename Pixel>
Quilt<Pixel>::Quilt(const QuiltInputs<Pixel>& inputs)
    : in_(inputs),
      blocks_(inputs.blocks),
      avoids_(inputs.avoidFillRegion && inputs.fillMask != nullptr)
{
    overlapError_.setStatusRecord(in_.statusRecord);
    paste_.setStatusRecord(in_.statusRecord);
}

template <typename Pixel>
QuiltResult Quilt<Pixel>::run()
{
    const bool wasToAvoid = avoids_;
    clampSizes();
    QuiltResult result;
    result.blockSize = {static_cast<float>(blocks_.blockW), static_cast<float>(blocks_.blockH)};
    const Region& rect = in_.fillRect;
    if (rect.isEmpty() || in_.textures.empty()) return result;
    shape(fillBuffer_, rect.x1 - rect.x0, rect.y1 - rect.y0);
    fillBuffer_.placeAt(rect.x0, rect.y0);
    // A rectangle that no memory can hold has millions of rows: placing them would never end.
    result.hasRoom = fillBuffer_.isUsable();
    if (!result.hasRoom) {
        MapProcessor::reportMap("Sampler", "bogus");
        return result;
    }
    for (int rowY = rect.y0; !isAborted(); rowY += strideY()) {
        const int height = std::min(blocks_.blockH, rect.y1 - rowY);
        layRow(rowY, height);
        reportProgress(rowY + height);
        if (rect.y1 - rowY <= strideY()) break;  // not a comparison of sums: those could overflow
    }
    RowCopy<Pixel> copy;
    copy.setStatusRecord(in_.statusRecord);
    copy.setRegion(rect);
    copy.process(&fillBuffer_, in_.target);
    result.gaveUpAvoiding = wasToAvoid && !avoids_;
    return result;
}

/// Clamps the sizes to each other; a host may hand over any values.
template <typename Pixel>
void Quilt<Pixel>::clampSizes()
{
    BlockSettings& s = blocks_;
    const Region& box = in_.sampleBox;
    // Avoiding candidates come from the whole texture and need not fit the sample box. A block is
    // at least one pixel, even when the box has no width or height.
    if (!avoids_) {
        if (s.blockW >= 1) s.blockW = std::min(s.blockW, box.x1 - box.x0);
        if (s.blockH >= 1) s.blockH = std::min(s.blockH, box.y1 - box.y0);
    }
    s.blockW = std::max(s.blockW, 1);
    s.blockH = std::max(s.blockH, 1);
    s.overlapW = std::clamp(s.overlapW, 0, s.blockW / 2);
    s.overlapH = std::clamp(s.overlapH, 0, s.blockH / 2);
    s.blendW = std::clamp(s.blendW, 0, s.overlapW / 2);
    s.blendH = std::clamp(s.blendH, 0, s.overlapH / 2);
}

template <typename Pixel>
void Quilt<Pixel>::layRow(int rowY, int height)
{
    const Region& rect = in_.fillRect;
    shape(rowBuffer_, rect.x1 - rect.x0, height);
    rowBuffer_.placeAt(rect.x0, rowY);
    zeros_.assign(static_cast<std::size_t>(std::max(rect.x1 - rect.x0, height)), {0.0f, 0.0f});
    const std::size_t firstRecord = in_.blockList != nullptr ? in_.blockList->size() : 0;
    for (int x = rect.x0;; x += strideX()) {
        const int width = std::min(blocks_.blockW, rect.x1 - x);
        layBlock({x, rowY, width, height, x == rect.x0, rowY == rect.y0});
        if (isAborted()) return;
        if (rect.x1 - x <= strideX()) break;
    }
    joinRow(rowY, height);
    if (in_.blockList != nullptr) recordRowSeam(firstRecord);
}

/// Lays one block: draws candidates, keeps the one that agrees best with what is laid, cuts it in
/// along a seam, and records it for replay.
template <typename Pixel>
void Quilt<Pixel>::layBlock(const BlockPlace& place)
{
    const Candidate best = bestCandidate(place);
    seamV_.assign(static_cast<std::size_t>(place.height), {0.0f, 0.0f});
    if (!place.firstInRow) findVerticalSeam(place, best);
    pasteBlock(place, best);
    if (isAborted()) return;
    record(place, best);
}

template <typename Pixel>
typename Quilt<Pixel>::Candidate Quilt<Pixel>::bestCandidate(const BlockPlace& place)
{
    Random random(blockSeed(place));
    Candidate best{};
    float bestError = std::numeric_limits<float>::max();
    bool found = false;
    const int samples = std::max(blocks_.numSamples, 1);
    for (int texture = 0; texture < static_cast<int>(in_.textures.size()); ++texture) {
        startTrying(place, samples);
        for (int sample = 0; sample < samples && !isAborted(); ++sample) {
            const Candidate candidate = draw(texture, place, random);
            if (!tried_.isNew(candidate.x, candidate.y)) continue;
            const float error = candidateError(place, candidate);
            // Ties keep the earlier candidate. The first one stands in when no error is a number
            // below the limit, as with pixels that are not finite.
            if (error < bestError || !found) best = candidate;
            if (error < bestError) bestError = error;
            found = true;
        }
    }
    return best;
}

/// Keeps track of the positions drawn from the sample box where there are enough draws for that to
/// pay.
template <typename Pixel>
void Quilt<Pixel>::startTrying(const BlockPlace& place, int samples)
{
    const Region& box = in_.sampleBox;
    const std::int64_t columns = std::int64_t{box.x1} - place.width - box.x0;
    const std::int64_t rows = std::int64_t{box.y1} - place.height - box.y0;
    // A box that is smaller than the block draws to its other side.
    if (samples < kManySamples || avoids_ || columns < 0 || rows < 0) {
        tried_.stop();
    } else {
        tried_.start(box.x0, box.y0, columns, rows);
    }
}

template <typename Pixel>
typename Quilt<Pixel>::Candidate Quilt<Pixel>::draw(int texture, const BlockPlace& place,
                                                    Random& random)
{
    Candidate candidate{texture, 0, 0};
    if (avoids_) {
        if (!drawAvoiding(random, place, candidate)) {
            std::fputs(kCannotAvoid, stderr);
            avoids_ = false;
        }
        return candidate;
    }
    const Region& box = in_.sampleBox;
    candidate.x = box.x0 + drawBelow(random, std::int64_t{box.x1} - place.width - box.x0);
    candidate.y = box.y0 + drawBelow(random, std::int64_t{box.y1} - place.height - box.y0);
    return candidate;
}

/// Draws from the whole texture until a candidate keeps clear of the fill region; the last one
/// drawn stands when none does.
template <typename Pixel>
bool Quilt<Pixel>::drawAvoiding(Random& random, const BlockPlace& place, Candidate& candidate) const
{
    const Map<Pixel>& texture = *in_.textures[static_cast<std::size_t>(candidate.texture)];
    for (int attempt = 0; attempt < kAvoidAttempts; ++attempt) {
        candidate.x =
            texture.xAxis().offset + drawBelow(random, std::int64_t{texture.width()} - place.width);
        candidate.y = texture.yAxis().offset +
                      drawBelow(random, std::int64_t{texture.height()} - place.height);
        if (!touchesFillRegion(candidate, place)) return true;
    }
    return false;
}

template <typename Pixel>
bool Quilt<Pixel>::touchesFillRegion(const Candidate& candidate, const BlockPlace& place) const
{
    for (int j = 0; j < place.height; ++j) {
        const RowReader mask(*in_.fillMask, candidate.y + j);
        for (int i = 0; i < place.width; ++i) {
            if (mask[candidate.x + i] != 0.0f) return true;
        }
    }
    return false;
}

/// The candidate's disagreement with the known pixels, the previous block and the previous row.
template <typename Pixel>
float Quilt<Pixel>::candidateError(const BlockPlace& place, const Candidate& candidate)
{
    const int overlapW = std::min(blocks_.overlapW, place.width);
    const int overlapH = std::min(blocks_.overlapH, place.height);
    float error = 0.0f;  // exact: float, in this order
    if (!in_.fillAll) {
        overlapError_.setWeight({in_.weightMap, place.x, place.y});
        error +=
            errorAgainst(*in_.source, place, candidate, blockError_, place.width, place.height);
        overlapError_.setWeight({});
    }
    if (!place.firstInRow) {
        error += errorAgainst(rowBuffer_, place, candidate, columnError_, overlapW, place.height);
    }
    if (!place.firstRow) {
        error += errorAgainst(fillBuffer_, place, candidate, rowError_, place.width, overlapH);
    }
    return error;
}

/// The disagreement over the block's first `width` x `height` pixels, left in `error`.
template <typename Pixel>
float Quilt<Pixel>::errorAgainst(const Map<Pixel>& laid, const BlockPlace& place,
                                 const Candidate& candidate, Map<Pixel32f>& error, int width,
                                 int height)
{
    if (width < 1 || height < 1) return 0.0f;
    shape(error, width, height);
    const Map<Pixel>* texture = in_.textures[static_cast<std::size_t>(candidate.texture)];
    overlapError_.setImages({&laid, place.x, place.y}, {texture, candidate.x, candidate.y});
    return overlapError_.measure(error);
}

template <typename Pixel>
void Quilt<Pixel>::findVerticalSeam(const BlockPlace& place, const Candidate& best)
{
    const int overlap = std::min(blocks_.overlapW, place.width);
    if (overlap < 1) return;
    errorAgainst(rowBuffer_, place, best, columnError_, overlap, place.height);
    if (isAborted()) return;
    bestFitPath({blocks_.seamStep, blocks_.blendW}, columnError_, columnCost_, seamV_,
                SeamMode::Vertical);
}

template <typename Pixel>
void Quilt<Pixel>::pasteBlock(const BlockPlace& place, const Candidate& best)
{
    paste_.setSourcePosition(best.x, best.y);
    paste_.setSeams({.horizontal = zeros_, .vertical = seamV_});
    // The first block of a row has nothing beside it to blend with.
    paste_.setBlend({.width = place.firstInRow ? 0 : blocks_.blendW, .height = 0});
    paste_.setRegion({place.x, place.y, place.x + place.width, place.y + place.height});
    paste_.process(*in_.textures[static_cast<std::size_t>(best.texture)], rowBuffer_);
}

template <typename Pixel>
void Quilt<Pixel>::record(const BlockPlace& place, const Candidate& best)
{
    if (in_.blockList != nullptr) {
        in_.blockList->push_back({static_cast<float>(place.x),
                                  static_cast<float>(place.y),
                                  static_cast<float>(best.x),
                                  static_cast<float>(best.y),
                                  best.texture,
                                  {},
                                  seamV_});
    }
    if (in_.observer != nullptr) {
        in_.observer->blockLaid(
            {place.x, place.y, place.width, place.height, best.x, best.y, best.texture});
    }
}

/// Cuts the finished row into the fill buffer along its seam with the row before.
template <typename Pixel>
void Quilt<Pixel>::joinRow(int rowY, int height)
{
    const Region& rect = in_.fillRect;
    const int width = rect.x1 - rect.x0;
    const int overlap = std::min(blocks_.overlapH, height);
    const bool firstRow = rowY == rect.y0;
    seamH_.assign(static_cast<std::size_t>(width), {0.0f, 0.0f});
    if (!firstRow && overlap >= 1) {
        Map<Pixel32f> error;
        shape(error, width, overlap);
        overlapError_.setImages({&fillBuffer_, rect.x0, rowY}, {&rowBuffer_, rect.x0, rowY});
        overlapError_.measure(error);
        if (isAborted()) return;
        bestFitPath({blocks_.seamStep, blocks_.blendH}, error, rowCost_, seamH_,
                    SeamMode::Horizontal);
    }
    paste_.setSourcePosition(rect.x0, rowY);
    paste_.setSeams({.horizontal = seamH_, .vertical = zeros_});
    paste_.setBlend({.width = 0, .height = firstRow ? 0 : blocks_.blendH});
    paste_.setRegion({rect.x0, rowY, rect.x1, rowY + height});
    paste_.process(rowBuffer_, fillBuffer_);
}

/// Gives each block of the row its part of the row's horizontal seam.
template <typename Pixel>
void Quilt<Pixel>::recordRowSeam(std::size_t firstRecord)
{
    const int width = in_.fillRect.x1 - in_.fillRect.x0;
    int start = 0;
    for (std::size_t i = firstRecord; i < in_.blockList->size(); ++i) {
        const auto first = seamH_.begin() + start;
        const int count = std::min(blocks_.blockW, width - start);
        (*in_.blockList)[i].seamH.assign(first, first + count);
        start += strideX();
    }
}

/// The block's own seed: its candidates depend on its place and the user's seed only.
template <typename Pixel>
std::uint32_t Quilt<Pixel>::blockSeed(const BlockPlace& place) const
{
    // exact: 32-bit wrap-around
    return 200u * static_cast<std::uint32_t>(place.y) + 103u * static_cast<std::uint32_t>(place.x) +
           static_cast<std::uint32_t>(in_.seed);
}

template <typename Pixel>
void Quilt<Pixel>::reportProgress(int yDone) const
{
    if (in_.observer == nullptr) return;
    const Region& rect = in_.fillRect;
    in_.observer->progress(static_cast<double>(yDone - rect.y0) / (rect.y1 - rect.y0));
}

template <typename Pixel>
bool Quilt<Pixel>::isAborted() const
{
    return in_.statusRecord != nullptr && in_.statusRecord->aborted != 0;
}

template class Quilt<PixelRGBA8>;
template class Quilt<PixelRGBA16>;
template class Quilt<PixelRGBAf>;

}  // namespace Orvane::Engine
