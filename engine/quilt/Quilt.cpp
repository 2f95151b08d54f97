#include "engine/quilt/Quilt.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <limits>
#include <utility>

#include "engine/filter/FillAndCopy.h"
#include "engine/map/PixelMix.h"

namespace Orvane::Engine {
namespace {

constexpr const char* kCannotAvoid = "Cannot avoid matte!\n";
/// Positions drawn between two polls for an abort; a millisecond or two.
constexpr std::int64_t kPositionsBetweenPolls = 1 << 16;
constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();
constexpr std::size_t kNowhere = std::numeric_limits<std::size_t>::max();
/// Runs of blocks in a step for each thread; more than one, so that the others make up for a slow
/// thread.
constexpr int kRunsPerThread = 2;
/// The largest sample box that is copied when it extends beyond its texture, pixels.
constexpr std::int64_t kMaxUnfolded = 1 << 22;

/// The column of a block where its vertical seam cuts. Far out, where floats are coarse, the cut is
/// beside the seam; then it stays in the overlap, since nothing lies under the rest of the block.
int cutIn(const BlockPlace& place, int seam, int blend)
{
    const int cut = cutAt(place.x, static_cast<float>(seam)) - place.x;
    return std::min(cut, std::max(seam, place.overlapW - blend));
}

}  // namespace

template <typename Pixel>
Quilt<Pixel>::Quilt(const QuiltInputs<Pixel>& inputs)
    : in_(inputs),
      blocks_(inputs.blocks),
      work_(inputs.statusRecord),
      avoidFailure_{kNowhere, kNever},
      workspaces_(static_cast<std::size_t>(work_.workers()))
{}

template <typename Pixel>
QuiltResult Quilt<Pixel>::run()
{
    clampSizes();
    QuiltResult result;
    result.blockSize = {static_cast<float>(blocks_.blockW), static_cast<float>(blocks_.blockH)};
    const Region& rect = in_.fillRect;
    if (rect.isEmpty() || in_.textures.empty()) return result;
    result.hasRoom = makeRoom();
    if (!result.hasRoom) {
        MapProcessor::reportMap("Sampler", "bogus");
        return result;
    }
    if (isAvoiding()) findAvoidFailure();
    result.gaveUpAvoiding = avoidFailure_.block != kNowhere;
    if (!placeBlocks()) return result;
    if (in_.laid != nullptr) {
        *in_.laid = std::move(fillBuffer_);
        return result;
    }
    RowCopy<Pixel> copy;
    copy.setStatusRecord(in_.statusRecord);
    copy.setRegion(rect);
    copy.process(&fillBuffer_, in_.target);
    return result;
}

/// Finds the rows of blocks that have to be placed. A row changes nothing below its corner. Within
/// a row every block counts, since the seam with the row below is the best one over its whole
/// width; and so does every row up to the last one wanted where they are recorded or reported.
template <typename Pixel>
void Quilt<Pixel>::findWanted()
{
    endRow_ = grid_.rows();
    wanted_ = in_.wanted.within(in_.fillRect);
    if (in_.wanted.isEmpty()) wanted_ = in_.fillRect;
    if (in_.blockList != nullptr || in_.observer != nullptr) return;
    while (endRow_ > 0 && grid_.rowY(endRow_ - 1) >= wanted_.y1) --endRow_;
}

/// Clamps the sizes to each other; a host may pass any values.
template <typename Pixel>
void Quilt<Pixel>::clampSizes()
{
    BlockSettings& s = blocks_;
    const Region& box = in_.sampleBox;
    // Avoiding candidates come from the whole texture and need not fit the sample box. A block is
    // at least one pixel, even when the box has no width or height.
    if (!isAvoiding()) {
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

/// Makes the data that all blocks share; false without memory for the rectangle.
template <typename Pixel>
bool Quilt<Pixel>::makeRoom()
{
    const Region& rect = in_.fillRect;
    grid_ = BlockGrid(rect, blocks_);
    const int workers = work_.workers();
    if (workers > 1) grid_.splitRuns(kRunsPerThread * workers);
    findWanted();
    fillBuffer_.setSize(rect.x1 - rect.x0, rect.y1 - rect.y0);
    fillBuffer_.placeAt(rect.x0, rect.y0);
    fillBuffer_.storeOnly(wanted_);
    fillBuffer_.allocate();
    if (!fillBuffer_.isUsable()) return false;
    keepsLower_ = wanted_ != rect;
    openStrips_ = grid_.openStrips();
    if (grid_.rows() > 1 && blocks_.overlapH > 0) {
        strips_.setSize(rect.x1 - rect.x0, stripStart(openStrips_ - 1) + stripHeight());
        strips_.allocate();
        if (!strips_.isUsable()) return false;
    }
    chosen_.resize(grid_.index(grid_.rows(), 0));
    if (in_.blockList != nullptr) in_.blockList->resize(chosen_.size());
    for (const Map<Pixel>* texture : in_.textures) {
        textures_.emplace_back(*texture);
        if (!isAvoiding()) textures_.back().unfold(in_.sampleBox, kMaxUnfolded);
        textureDomains_.push_back(texture);
    }
    if (isAvoiding()) avoided_ = std::make_unique<RegionSums>(*in_.fillMask);
    candidates_ = {in_.sampleBox, textureDomains_, avoided_.get(), std::max(blocks_.numSamples, 1),
                   in_.seed};
    return true;
}

/// Finds the first candidate that cannot avoid the fill region, before any block is placed:
/// candidates depend on their block only. The blocks after that one then draw freely, in whatever
/// order they are placed.
template <typename Pixel>
void Quilt<Pixel>::findAvoidFailure()
{
    std::vector<AvoidFailure> first(static_cast<std::size_t>(grid_.rows()), avoidFailure_);
    std::atomic<int> firstRow{grid_.rows()};
    const auto drawRow = [&](int row, int worker) {
        for (int column = 0; column < grid_.columns() && row <= firstRow; ++column) {
            const BlockPlace place = grid_.at(row, column);
            CandidateDraw draw(candidates_, place, kNever, workspace(worker).choice.tried());
            std::int64_t polledAt = 0;
            while (!draw.failedToAvoid() && draw.next()) {
                if (draw.positionsDrawn() - polledAt < kPositionsBetweenPolls) continue;
                polledAt = draw.positionsDrawn();
                if (work_.stops()) return;
            }
            if (!draw.failedToAvoid()) continue;
            first[static_cast<std::size_t>(row)] = {grid_.index(row, column), draw.drawn()};
            for (int min = firstRow; row < min;) firstRow.compare_exchange_weak(min, row);
            return;
        }
    };
    if (!work_.run(grid_.rows(), drawRow) || firstRow == grid_.rows()) return;
    avoidFailure_ = first[static_cast<std::size_t>(firstRow)];
    std::fputs(kCannotAvoid, stderr);
}

/// The number of a block's candidates that avoid the fill region.
template <typename Pixel>
std::int64_t Quilt<Pixel>::freeFrom(std::size_t block) const
{
    if (block == avoidFailure_.block) return avoidFailure_.drawn;
    return block < avoidFailure_.block ? kNever : 0;
}

/// Places all blocks; false after an abort.
template <typename Pixel>
bool Quilt<Pixel>::placeBlocks()
{
    for (int step = 0; step <= grid_.steps(); ++step) {
        std::vector<BlockRun> runs =
            step < grid_.steps() ? grid_.runsOf(step) : std::vector<BlockRun>{};
        std::erase_if(runs, [this](const BlockRun& run) { return run.row >= endRow_; });
        // Rows that the previous step completed are joined in this one.
        std::vector<int> joins;
        for (int row = 0; row < endRow_; ++row) {
            if (grid_.lastStepOf(row) == step - 1) joins.push_back(row);
        }
        const int runCount = static_cast<int>(runs.size());
        const auto work = [&](int task, int worker) {
            if (task < runCount) {
                placeRun(runs[static_cast<std::size_t>(task)], workspace(worker));
            } else {
                joinRow(joins[static_cast<std::size_t>(task - runCount)], workspace(worker));
            }
        };
        if (!work_.run(runCount + static_cast<int>(joins.size()), work)) return false;
        reportRows(joins.empty() ? 0 : joins.back() + 1);
    }
    return true;
}

template <typename Pixel>
void Quilt<Pixel>::placeRun(const BlockRun& run, Workspace& workspace)
{
    for (int column = run.begin; column < run.end && !work_.stops(); ++column) {
        placeBlock(grid_.at(run.row, column), workspace);
    }
}

/// Places one block: draws candidates, chooses the best, pastes it along a seam, and records it for
/// replay.
template <typename Pixel>
void Quilt<Pixel>::placeBlock(const BlockPlace& place, Workspace& workspace)
{
    const std::size_t index = grid_.index(place.row, place.column);
    const BlockSurroundings<Pixel> surroundings = {
        .textures = textures_,
        .known = in_.fillAll ? nullptr : in_.source,
        .weights = in_.weightMap,
        .left = place.firstInRow() ? nullptr : &chosen_[index - 1],
        .leftShift = blocks_.strideX(),
        .below = below(place)};
    CandidateDraw draw(candidates_, place, freeFrom(index), workspace.choice.tried());
    const Candidate best =
        workspace.choice.best(draw, place, surroundings, [this] { return work_.stops(); });
    chosen_[index] = best;
    const Rows<Pixel> block = textures_[static_cast<std::size_t>(best.texture)].rows(
        best.x, best.y, place.width, place.height, workspace.copy);
    workspace.path.assign(static_cast<std::size_t>(place.height), 0);
    if (place.overlapW > 0) findVerticalSeam(place, block, workspace);
    pasteBlock(place, block, workspace.path);
    if (in_.blockList != nullptr) record(place, best, workspace.path);
}

/// The row below, from the block's corner on.
template <typename Pixel>
Rows<Pixel> Quilt<Pixel>::below(const BlockPlace& place) const
{
    if (place.overlapH < 1) return {};
    return lowerStrip(place.row).from(place.x - in_.fillRect.x0, 0);
}

template <typename Pixel>
void Quilt<Pixel>::findVerticalSeam(const BlockPlace& place, const Rows<Pixel>& block,
                                    Workspace& workspace) const
{
    const Candidate& left = chosen_[grid_.index(place.row, place.column - 1)];
    const Rows<Pixel> beside = textures_[static_cast<std::size_t>(left.texture)].rows(
        left.x + blocks_.strideX(), left.y, place.overlapW, place.height, workspace.besideCopy);
    workspace.strip.shape(place.height, place.overlapW);
    Kernels::pixelKernels<Pixel>(Kernels::kernels())
        .errorMap(beside, block, {}, place.overlapW, place.height, workspace.strip.errors(0),
                  workspace.strip.stride());
    bestFitPath({blocks_.seamStep, blocks_.blendW}, workspace.strip, workspace.path);
}

/// The strip of a row of blocks, as this row has it.
template <typename Pixel>
Rows<Pixel> Quilt<Pixel>::upperStrip(int row) const
{
    return {strips_.pixelAt(0, stripStart(row)), strips_.stride()};
}

/// The same pixels as the row below has them.
template <typename Pixel>
Rows<Pixel> Quilt<Pixel>::lowerStrip(int row) const
{
    if (!keepsLower_) {
        return {fillBuffer_.pixelAt(0, grid_.rowY(row) - in_.fillRect.y0), fillBuffer_.stride()};
    }
    return {strips_.pixelAt(0, stripStart(row) + blocks_.overlapH), strips_.stride()};
}

/// Where a block's row y goes: to the strips in which rows of blocks overlap, whole; to the fill
/// buffer, as far as it is wanted.
template <typename Pixel>
typename Quilt<Pixel>::KeptRow Quilt<Pixel>::keptRow(const BlockPlace& place, int y)
{
    const auto inStrips = [&](int row) {
        return KeptRow{strips_.pixelAt(place.x - in_.fillRect.x0, row), 0, place.width};
    };
    if (y < place.overlapH) return inStrips(stripStart(place.row) + y);
    if (keepsLower_ && y >= blocks_.strideY()) {
        return inStrips(stripStart(place.row + 1) + blocks_.overlapH + y - blocks_.strideY());
    }
    const Region part =
        wanted_.within({place.x, place.y + y, place.x + place.width, place.y + y + 1});
    if (part.isEmpty()) return {nullptr, 0, 0};
    return {fillBuffer_.pixelAt(part.x0 - wanted_.x0, part.y0 - wanted_.y0), part.x0 - place.x,
            part.x1 - place.x};
}

/// Pastes a block along its vertical seam; the first of a row has none.
template <typename Pixel>
void Quilt<Pixel>::pasteBlock(const BlockPlace& place, const Rows<Pixel>& block,
                              std::span<const int> seam)
{
    const int blend = place.firstInRow() ? 0 : blocks_.blendW;
    const std::vector<float> ramp = blendRamp(blend);
    for (int y = 0; y < place.height; ++y) {
        const KeptRow to = keptRow(place, y);
        const Pixel* from = block.at(y);
        // Columns relative to the block's corner.
        const int cut =
            place.firstInRow() ? 0 : cutIn(place, seam[static_cast<std::size_t>(y)], blend);
        const int begin = std::clamp(cut - blend, to.begin, to.end);
        const int whole = std::clamp(cut + blend, to.begin, to.end);
        if (begin < whole) {
            Kernels::pixelKernels<Pixel>(Kernels::kernels())
                .blend(to.pixels + (begin - to.begin), from + begin,
                       ramp.data() + (begin - cut + blend), whole - begin);
        }
        std::copy(from + whole, from + to.end, to.pixels + (whole - to.begin));
    }
}

/// Pastes the strip of a complete row along its seam with the row below.
template <typename Pixel>
void Quilt<Pixel>::joinRow(int row, Workspace& workspace)
{
    const int width = in_.fillRect.x1 - in_.fillRect.x0;
    const int overlap = grid_.rowOverlap(row);
    const bool isWanted = grid_.rowY(row) < wanted_.y1 && grid_.rowY(row) + overlap > wanted_.y0;
    if (!isWanted && in_.blockList == nullptr) return;
    workspace.path.assign(static_cast<std::size_t>(width), 0);
    if (overlap > 0) {
        const Rows<Pixel> lower = lowerStrip(row), upper = upperStrip(row);
        workspace.errors.resize(static_cast<std::size_t>(width) *
                                static_cast<std::size_t>(overlap));
        Kernels::pixelKernels<Pixel>(Kernels::kernels())
            .errorMap(lower, upper, {}, width, overlap, workspace.errors.data(), width);
        workspace.strip.shape(width, overlap);
        workspace.strip.setColumns(
            {workspace.errors.data(), static_cast<std::ptrdiff_t>(4) * width});
        bestFitPath({blocks_.seamStep, blocks_.blendH}, workspace.strip, workspace.path);
        // The search ran from the last column to the first.
        std::ranges::reverse(workspace.path);
        pasteStrip(row, workspace.path);
    }
    if (in_.blockList != nullptr) recordRowSeam(row, workspace.path);
}

template <typename Pixel>
void Quilt<Pixel>::pasteStrip(int row, std::span<const int> seam)
{
    const int rowY = grid_.rowY(row);
    const std::vector<float> ramp = blendRamp(blocks_.blendH);
    std::vector<int> cuts;
    cuts.reserve(seam.size());
    for (const int y : seam) cuts.push_back(cutAt(rowY, static_cast<float>(y)) - rowY);
    for (int y = 0; y < grid_.rowOverlap(row); ++y) {
        if (rowY + y >= wanted_.y0 && rowY + y < wanted_.y1) pasteStripRow(row, y, cuts, ramp);
    }
}

/// Pastes what is wanted of a strip's row y. On either side of the blend band pixels are copied in
/// runs.
template <typename Pixel>
void Quilt<Pixel>::pasteStripRow(int row, int y, std::span<const int> cuts,
                                 std::span<const float> ramp)
{
    const int blend = blocks_.blendH;
    const Pixel* upper = upperStrip(row).at(y);
    const Pixel* lower = lowerStrip(row).at(y);
    const int begin = wanted_.x0 - in_.fillRect.x0, end = wanted_.x1 - in_.fillRect.x0;
    Pixel* to = fillBuffer_.pixelAt(0, grid_.rowY(row) + y - wanted_.y0);
    // The row within the band, from its first one on.
    const auto inBand = [&](int x) { return y - cuts[static_cast<std::size_t>(x)] + blend; };
    for (int x = begin; x < end;) {
        const int first = x, at = inBand(x);
        Pixel* const out = to + (x - begin);
        if (at >= 2 * blend) {
            while (x < end && inBand(x) >= 2 * blend) ++x;
            std::copy(upper + first, upper + x, out);
        } else if (at >= 0) {
            *out = mixed(lower[x], upper[x], ramp[static_cast<std::size_t>(at)]);
            ++x;
        } else {
            while (x < end && inBand(x) < 0) ++x;
            if (keepsLower_) std::copy(lower + first, lower + x, out);  // else they are there
        }
    }
}

template <typename Pixel>
void Quilt<Pixel>::record(const BlockPlace& place, const Candidate& best, std::span<const int> seam)
{
    BlockRecord& record = (*in_.blockList)[grid_.index(place.row, place.column)];
    record.x = static_cast<float>(place.x);
    record.y = static_cast<float>(place.y);
    record.srcX = static_cast<float>(best.x);
    record.srcY = static_cast<float>(best.y);
    record.textureIndex = best.texture;
    record.seamV.assign(seam.size(), {0.0f, 0.0f});
    if (place.overlapW < 1) return;
    for (std::size_t y = 0; y < seam.size(); ++y) {
        record.seamV[y] = {static_cast<float>(seam[y]), static_cast<float>(y)};
    }
}

/// Records each block's part of the row's horizontal seam.
template <typename Pixel>
void Quilt<Pixel>::recordRowSeam(int row, std::span<const int> seam)
{
    const bool isJoined = grid_.rowOverlap(row) > 0;
    for (int column = 0; column < grid_.columns(); ++column) {
        const auto start =
            static_cast<std::size_t>(column) * static_cast<std::size_t>(blocks_.strideX());
        const std::size_t count =
            std::min(static_cast<std::size_t>(blocks_.blockW), seam.size() - start);
        auto& part = (*in_.blockList)[grid_.index(row, column)].seamH;
        part.assign(count, {0.0f, 0.0f});
        if (!isJoined) continue;
        for (std::size_t i = 0; i < count; ++i) {
            part[i] = {static_cast<float>(start + i), static_cast<float>(seam[start + i])};
        }
    }
}

/// Reports the blocks of the first `rows` rows, in order.
template <typename Pixel>
void Quilt<Pixel>::reportRows(int rows)
{
    if (in_.observer == nullptr) return;
    for (; reportedRows_ < rows; ++reportedRows_) {
        for (int column = 0; column < grid_.columns(); ++column) {
            const BlockPlace place = grid_.at(reportedRows_, column);
            const Candidate& best = chosen_[grid_.index(reportedRows_, column)];
            in_.observer->blockLaid(
                {place.x, place.y, place.width, place.height, best.x, best.y, best.texture});
        }
        const Region& rect = in_.fillRect;
        const int done = grid_.rowY(reportedRows_) + grid_.rowHeight(reportedRows_) - rect.y0;
        in_.observer->progress(static_cast<double>(done) / (rect.y1 - rect.y0));
    }
}

template <typename Pixel>
typename Quilt<Pixel>::Workspace& Quilt<Pixel>::workspace(int worker)
{
    auto& workspace = workspaces_[static_cast<std::size_t>(worker)];
    if (workspace == nullptr) workspace = std::make_unique<Workspace>(work_.threads());
    return *workspace;
}

template class Quilt<PixelRGBA8>;
template class Quilt<PixelRGBA16>;
template class Quilt<PixelRGBAf>;

}  // namespace Orvane::Engine
