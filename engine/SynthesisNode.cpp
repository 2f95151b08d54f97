#include "engine/SynthesisNode.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <type_traits>

#include "engine/boundary/BoundaryPath.h"
#include "engine/filter/BandNodes.h"
#include "engine/filter/BoxBlur.h"
#include "engine/filter/FillAndCopy.h"
#include "engine/filter/LuminanceMatch.h"
#include "engine/kernels/Kernels.h"
#include "engine/map/ExactMath.h"
#include "engine/map/MapRow.h"
#include "engine/map/PixelMix.h"
#include "engine/pass/SharedWork.h"
#include "engine/quilt/BlockReplay.h"

namespace Orvane::Engine {
namespace {

constexpr float kMinLuminanceBlur = 2.0f;

/// More than the luminance match and the boundary read beyond what shows, pixels.
constexpr int kReadBeyond = 32;

/// The note on a boundary outcome, or null.
const char* noteOf(BoundaryOutcome outcome)
{
    switch (outcome) {
        case BoundaryOutcome::Fitted:
            return nullptr;
        case BoundaryOutcome::NoPath:
            return "no path leads round the region: nothing was filled";
        case BoundaryOutcome::TraceFailed:
            return "the best path could not be followed: the mask's own edge is the boundary";
        case BoundaryOutcome::NotEnclosing:
            return "the best path does not enclose the region: the mask's own edge is the boundary";
    }
    return nullptr;
}

// exact: float, truncated. The fill rectangle extends five times the path width and the edge blend
// beyond the mask.

int marginBefore(int offset, float pathWidth, float edgeBlend)
{
    return truncateToInt(static_cast<float>(offset) - 5.0f * pathWidth - 5.0f * edgeBlend);
}

int withMargins(int size, float pathWidth, float edgeBlend)
{
    return truncateToInt(static_cast<float>(size) + 10.0f * (pathWidth + edgeBlend));
}

/// The reach of three applications of a box, pixels; limited to more than any image is wide.
int blurReach(float radius)
{
    constexpr float kMaxRadius = 1e8f;
    return 3 * (truncateToInt(std::min(radius, kMaxRadius)) + 1);
}

/// The smallest region that holds every pixel of a mask that is not 0, grown by a margin. Empty
/// when all are 0.
Region boundsOf(const Map<Pixel32f>& mask, int margin)
{
    if (!mask.isUsable()) return {};
    const Region stored = mask.storedExtent();
    Region bounds{stored.x1, stored.y1, stored.x0, stored.y0};
    const auto isNonzero = [](float value) { return value != 0.0f; };
    for (int y = stored.y0; y < stored.y1; ++y) {
        const auto row = RowReader(mask, y).interior(stored.x0, stored.x1);
        const float* const end = row.pixels + (row.end - row.begin);
        const float* const first = std::find_if(row.pixels, end, isNonzero);
        if (first == end) continue;
        const float* last = end - 1;
        while (*last == 0.0f) --last;
        bounds = {std::min(bounds.x0, row.begin + static_cast<int>(first - row.pixels)),
                  std::min(bounds.y0, y),
                  std::max(bounds.x1, row.begin + static_cast<int>(last - row.pixels) + 1), y + 1};
    }
    if (bounds.isEmpty()) return {};
    return {bounds.x0 - margin, bounds.y0 - margin, bounds.x1 + margin, bounds.y1 + margin};
}

/// Copies R, G and B of `count` pixels and the alpha of others. Copies whole runs and sets their
/// alpha then: writing three channels of each pixel takes several times as long.
template <typename Pixel>
void copyColours(const Pixel* from, const Pixel* alphaFrom, Pixel* to, int count)
{
    constexpr int kRun = 64;
    std::array<typename Pixel::Channel, kRun> alphas;
    for (int done = 0; done < count; done += kRun) {
        const int run = std::min(kRun, count - done);
        std::transform(alphaFrom + done, alphaFrom + done + run, alphas.begin(),
                       [](const Pixel& p) { return p.a; });
        std::copy_n(from + done, run, to + done);
        for (int i = 0; i < run; ++i) to[done + i].a = alphas[static_cast<std::size_t>(i)];
    }
}

/// Whether alpha is M everywhere. Looks at bands of rows, on all workers; false after an abort.
template <typename Pixel>
bool isOpaque(const Rows<Pixel>& rows, int width, int height, SharedWork& work)
{
    constexpr auto kOpaque = PixelTraits<Pixel>::stored(PixelTraits<Pixel>::kMax);
    constexpr int kBandRows = 64;
    std::atomic<bool> isAll{true};
    const bool isDone = work.run((height + kBandRows - 1) / kBandRows, [&](int band, int) {
        const int end = std::min((band + 1) * kBandRows, height);
        for (int y = band * kBandRows; y < end && isAll; ++y) {
            const Pixel* row = rows.at(y);
            int other = 0;
            for (int x = 0; x < width; ++x) other |= row[x].a != kOpaque ? 1 : 0;
            if (other != 0) isAll = false;
        }
    });
    return isDone && isAll;
}

/// Part of a row to composite, from its first pixel on.
template <typename Pixel>
struct CompositeSpan {
    int begin, end;
    Pixel* out;
    const Pixel* texture;
    const float* mask;  ///< null where all of it is `fill`
    float fill;
    const float* gain;  ///< may be null
};

/// Whether the composite of a span is the texture itself. With floats it is not: the mixture of all
/// texture and no source rounds.
template <typename Pixel>
bool isTextureAlone(const CompositeSpan<Pixel>& span)
{
    return std::is_integral_v<typename Pixel::Channel> && span.mask == nullptr &&
           span.gain == nullptr && textureShare<Pixel>(span.fill) == 1.0f;
}

/// Composites a span. Sources that need edge handling, and masks without pixels, are read into
/// buffers run by run.
template <typename Pixel>
void composite(const RowReader<Pixel>& source, const CompositeSpan<Pixel>& span)
{
    const int count = span.end - span.begin;
    if (count <= 0) return;
    if (isTextureAlone(span)) {
        if (span.out != span.texture) std::copy_n(span.texture, count, span.out);
        return;
    }
    const Pixel* whole = source.span(span.begin, count);
    const bool isSourceAlone = span.mask == nullptr && textureShare<Pixel>(span.fill) == 0.0f;
    if (isSourceAlone && whole != nullptr) {
        copyColours(whole, span.texture, span.out, count);
        return;
    }
    constexpr int kRun = 256;
    std::array<Pixel, kRun> pixels;
    std::array<float, kRun> mask;
    if (span.mask == nullptr) mask.fill(span.fill);
    const bool isOneRun = whole != nullptr && span.mask != nullptr;
    for (int done = 0; done < count;) {
        const int run = isOneRun ? count : std::min(kRun, count - done);
        for (int i = 0; whole == nullptr && i < run; ++i) {
            pixels[static_cast<std::size_t>(i)] = source[span.begin + done + i];
        }
        Kernels::pixelKernels<Pixel>(Kernels::kernels())
            .composite(span.out + done, span.texture + done,
                       whole != nullptr ? whole + done : pixels.data(),
                       span.mask != nullptr ? span.mask + done : mask.data(),
                       span.gain != nullptr ? span.gain + done : nullptr, run);
        done += run;
    }
}

}  // namespace

template <typename Pixel>
SynthesisNode<Pixel>::SynthesisNode(const SynthesisSettings<Pixel>& settings, TemporalState& state,
                                    RenderObserver* observer)
    : settings_(settings), state_(&state), observer_(observer), reports_(observer, state, kMax)
{}

template <typename Pixel>
void SynthesisNode<Pixel>::begin()
{
    collectTextures();
    const Region fillRect = findFillRect();
    if (settings_.useStoredBlocks) {
        replay();
        return;
    }
    if (this->pollAbort()) return;
    if (settings_.fillAll || settings_.fillMask == nullptr) {
        compositeTextureOnly();
        quilt(this->region(), {});
    } else {
        fillMasked(fillRect);
    }
}

template <typename Pixel>
void SynthesisNode<Pixel>::replay()
{
    const ObservedStage stage(observer_, "replay");
    BlockReplay<Pixel> blocks(*state_, textures_, this->region(), this->statusRecord(), observer_);
    laid_ = blocks.run({settings_.blocks.blendW, settings_.blocks.blendH}, this->target());
    laidPart_ = laid_.storedExtent();
    copyLaidOutside();
}

/// Copies the laid texture to the target, as far as both have pixels in a part of it.
template <typename Pixel>
void SynthesisNode<Pixel>::copyLaid(const Region& part)
{
    const Region common = part.within(laid_.storedExtent()).within(this->target().storedExtent());
    if (common.isEmpty() || !laid_.isUsable()) return;
    RowCopy<Pixel> copy;
    copy.setStatusRecord(this->statusRecord());
    copy.setRegion(common);
    copy.process(&laid_, &this->target());
}

/// Copies the texture that was laid beside the window, which the composite does not reach.
template <typename Pixel>
void SynthesisNode<Pixel>::copyLaidOutside()
{
    const Region& bounds = state_->fillBounds;
    const Region& window = this->region();
    const int y0 = std::clamp(window.y0, bounds.y0, bounds.y1);
    const int y1 = std::clamp(window.y1, y0, bounds.y1);
    copyLaid({bounds.x0, bounds.y0, bounds.x1, y0});
    copyLaid({bounds.x0, y1, bounds.x1, bounds.y1});
    copyLaid({bounds.x0, y0, window.x0, y1});
    copyLaid({window.x1, y0, bounds.x1, y1});
}

/// Copies all of the laid texture after an abort, which no pass would do then.
template <typename Pixel>
void SynthesisNode<Pixel>::keepLaid()
{
    const Region common = laidPart_.within(this->target().storedExtent());
    if (common.isEmpty() || !laid_.isUsable()) return;
    for (int y = common.y0; y < common.y1; ++y) {
        RowWriter to(this->target(), y);
        copyRow(RowReader(laid_, y), to, common.x0, common.x1);
    }
}

template <typename Pixel>
void SynthesisNode<Pixel>::collectTextures()
{
    textures_.clear();
    for (Map<Pixel>* texture : settings_.textures) {
        if (texture == nullptr) continue;
        texture->setEdgeMode(EdgeMode::EdgeMirror, EdgeMode::EdgeMirror);
        textures_.push_back(texture);
    }
    this->other().setEdgeMode(EdgeMode::EdgeMirror, EdgeMode::EdgeMirror);
}

/// A replay covers the recorded fill bounds; a masked fill, the mask with a margin on every side;
/// anything else, the node's region.
template <typename Pixel>
Region SynthesisNode<Pixel>::findFillRect()
{
    if (settings_.useStoredBlocks) return state_->fillBounds;
    Region rect = this->region();
    if (settings_.fillMask != nullptr && !settings_.fillAll) {
        const MapAxis& x = settings_.fillMask->xAxis();
        const MapAxis& y = settings_.fillMask->yAxis();
        rect.x0 = marginBefore(x.offset, settings_.pathWidth, settings_.edgeBlend);
        rect.y0 = marginBefore(y.offset, settings_.pathWidth, settings_.edgeBlend);
        rect.x1 = rect.x0 + withMargins(x.size, settings_.pathWidth, settings_.edgeBlend);
        rect.y1 = rect.y0 + withMargins(y.size, settings_.pathWidth, settings_.edgeBlend);
    }
    state_->fillBounds = rect;
    return rect;
}

/// Makes the composite mask M everywhere: nothing of the source is kept. It stores one pixel, and
/// reads as its fill value elsewhere.
template <typename Pixel>
void SynthesisNode<Pixel>::compositeTextureOnly()
{
    Map<Pixel32f>& mask = state_->compositeMask;
    mask.copyGeometry(this->other());
    mask.setEdgeMode(EdgeMode::EdgeNone, EdgeMode::EdgeNone);
    mask.setFillValue(kMax);
    const Region extent = mask.extent();
    mask.storeOnly({extent.x0, extent.y0, extent.x0 + 1, extent.y0 + 1});
    mask.allocate();
    ConstantFill<Pixel32f> fill(kMax);
    fill.setStatusRecord(this->statusRecord());
    fill.process(&mask);
}

/// Whether what is laid beyond the pixels that later stages read need not be known: nothing keeps
/// it, no earlier mask or gain lets it show, and its alpha is M wherever the blocks come from.
template <typename Pixel>
bool SynthesisNode<Pixel>::mayLeaveOut(const Region& fillRect) const
{
    const Region written = fillRect.within(this->target().storedExtent());
    return !settings_.keepsBlocks && written == written.within(this->region()) &&
           !state_->compositeMask.isUsable() && !state_->luminanceGain.isUsable() &&
           texturesAreOpaque();
}

/// Blocks come from the sample box; from anywhere, when they avoid the fill region or when the box
/// is empty or extends beyond a texture, where it reads mirrored pixels.
template <typename Pixel>
bool SynthesisNode<Pixel>::texturesAreOpaque() const
{
    SharedWork work(this->statusRecord());
    const Region& box = settings_.sampleBox;
    const bool usesBox = !settings_.avoidFillRegion && !box.isEmpty();
    return std::ranges::all_of(textures_, [&](const Map<Pixel>* texture) {
        const bool isPart = (texture->domainFlags() & MapDomain::kStoresPart) != 0;
        if (isPart || !texture->isUsable()) return false;
        const int width = box.x1 - box.x0, height = box.y1 - box.y0;
        const Pixel* inBox =
            usesBox ? texture->interiorPixels(box.x0, box.y0, width, height) : nullptr;
        if (inBox != nullptr) {
            return isOpaque(Rows<Pixel>{inBox, texture->stride()}, width, height, work);
        }
        return isOpaque(Rows<Pixel>{texture->pixelAt(0, 0), texture->stride()}, texture->width(),
                        texture->height(), work);
    });
}

/// Quilts the fill rectangle into a buffer of its own.
template <typename Pixel>
void SynthesisNode<Pixel>::quilt(const Region& fillRect, const Region& wanted)
{
    const ObservedStage stage(observer_, "quilt");
    QuiltInputs<Pixel> inputs;
    inputs.fillRect = fillRect;
    inputs.wanted = wanted;
    inputs.sampleBox = settings_.sampleBox;
    inputs.textures = textures_;
    inputs.source = &this->other();
    inputs.target = &this->target();
    inputs.fillMask = settings_.fillMask;
    inputs.weightMap = &pathBand_;
    inputs.fillAll = settings_.fillAll || settings_.fillMask == nullptr;
    inputs.laid = &laid_;
    inputs.avoidFillRegion = settings_.avoidFillRegion;
    inputs.seed = settings_.seed;
    inputs.blocks = settings_.blocks;
    // What is recorded is also reported.
    const bool isRecorded = settings_.keepsBlocks || observer_ != nullptr;
    inputs.blockList = isRecorded ? &state_->blockList : nullptr;
    inputs.statusRecord = this->statusRecord();
    inputs.observer = observer_;
    const QuiltResult result = Quilt<Pixel>(inputs).run();
    laidPart_ = wanted.isEmpty() ? laid_.storedExtent() : wanted.within(laid_.storedExtent());
    state_->savedBlockSize = result.blockSize;
    if (!result.hasRoom) state_->valid = false;  // there is nothing to replay
}

/// Quilts the fill rectangle, guided by the known pixels round the region, and determines where the
/// texture replaces the source.
template <typename Pixel>
void SynthesisNode<Pixel>::fillMasked(const Region& fillRect)
{
    // The boundary runs in the band, and beyond its softened edge no texture shows.
    const int reach = blurReach(settings_.pathWidth) + blurReach(settings_.edgeBlend);
    shown_ = boundsOf(*settings_.fillMask, reach);
    prepareBand(fillRect);
    const bool isInPlace = readsTargetInPlace();
    const Region read = isInPlace ? Region{shown_.x0 - kReadBeyond, shown_.y0 - kReadBeyond,
                                           shown_.x1 + kReadBeyond, shown_.y1 + kReadBeyond}
                                  : fillRect;
    const bool leavesOut = isInPlace && mayLeaveOut(fillRect);
    quilt(fillRect, leavesOut ? read : Region{});
    if (this->pollAbort()) return;
    if (!leavesOut) copyLaidOutside();
    reports_.reportGuides(*settings_.fillMask, pathBand_);
    if (isInPlace && !settings_.luminanceMatch && laid_.isUsable()) {
        Map<Pixel> placed = laidInTarget(read);
        fitBoundary(fillRect, placed);
        return;
    }
    copyLaid(read);
    if (settings_.luminanceMatch) matchLuminance(fillRect);
    if (this->pollAbort()) return;
    fitBoundary(fillRect, this->target());
}

/// Whether the later stages read the target's pixels where they lie. The luminance match reads it
/// from the window's corner on, and what follows that from (0, 0) on.
template <typename Pixel>
bool SynthesisNode<Pixel>::readsTargetInPlace() const
{
    const auto isInPlace = [this](const MapAxis& axis, int corner) {
        const bool isAtOrigin = axis.origin == 0 && corner == 0;
        return axis.offset == axis.origin && (isAtOrigin || !settings_.luminanceMatch);
    };
    return isInPlace(this->target().xAxis(), this->region().x0) &&
           isInPlace(this->target().yAxis(), this->region().y0);
}

/// A view that reads as the target would with a part of what was laid in it.
template <typename Pixel>
Map<Pixel> SynthesisNode<Pixel>::laidInTarget(const Region& part)
{
    const Region common = part.within(laidPart_).within(this->target().storedExtent());
    Map<Pixel> view;
    view.copyGeometry(this->target());
    view.setFillValue(this->target().fillValue());
    if (common.isEmpty()) return view;
    view.storeOnly(common);
    const Region extent = laid_.storedExtent();
    view.borrow(laid_.pixelAt(common.x0 - extent.x0, common.y0 - extent.y0), laid_.stride());
    return view;
}

/// Blurs the mask over the rectangle, computes its gradient, and keeps the part outside the region.
template <typename Pixel>
void SynthesisNode<Pixel>::prepareBand(const Region& fillRect)
{
    const ObservedStage stage(observer_, "band");
    settings_.fillMask->setEdgeMode(EdgeMode::EdgeNone, EdgeMode::EdgeNone);
    pathBand_.setSize(fillRect.x1 - fillRect.x0, fillRect.y1 - fillRect.y0);
    pathBand_.placeAt(fillRect.x0, fillRect.y0);
    pathBand_.storeOnly(blurredAlike(shown_, fillRect, settings_.pathWidth));
    pathBand_.allocate();
    BoxBlur blur(BoxBlur::ThreeApplications, settings_.pathWidth);
    blur.setStatusRecord(this->statusRecord());
    blur.process(*settings_.fillMask, pathBand_);

    bandGradient_.copyGeometry(pathBand_);
    bandGradient_.allocate();
    MaskGradient gradient;
    gradient.setStatusRecord(this->statusRecord());
    gradient.process(pathBand_, bandGradient_);

    BandCut cut(kMax);
    cut.setStatusRecord(this->statusRecord());
    cut.process(*settings_.fillMask, pathBand_);
}

/// Computes the luminance gain of each pixel of the fill rectangle.
template <typename Pixel>
void SynthesisNode<Pixel>::matchLuminance(const Region& fillRect)
{
    const ObservedStage stage(observer_, "luminance");
    Map<Pixel32f>& gain = state_->luminanceGain;
    gain.copyGeometry(pathBand_);
    gain.setFillValue(pathBand_.fillValue());
    gain.allocate();
    ConstantFill<Pixel32f> ones(1.0f);
    ones.setStatusRecord(this->statusRecord());
    ones.process(&gain);

    LuminanceMatch<Pixel> match(pathBand_, this->other(), gain);
    match.setStatusRecord(this->statusRecord());
    match.setLuminanceBlur(std::max(settings_.luminanceBlur, kMinLuminanceBlur));
    match.setMaxPasses(settings_.maxPasses);
    match.setNeeded(shown_);
    match.setBandBounds(pathBand_.storedExtent());
    match.setRegion(fillRect);
    const Region& window = this->region();
    this->target().setOffset(window.x0, window.y0);
    match.process(this->target());
    this->target().setOffset(0, 0);
}

/// Fits the boundary between texture and source and makes the composite mask.
template <typename Pixel>
void SynthesisNode<Pixel>::fitBoundary(const Region& fillRect, const Map<Pixel>& placed)
{
    const ObservedStage stage(observer_, "boundary");
    BoundaryInputs<Pixel> inputs;
    inputs.search = {fillRect, &pathBand_,     &bandGradient_,
                     &placed,  &this->other(), this->statusRecord()};
    inputs.fillMask = settings_.fillMask;
    inputs.seed = settings_.seed;
    inputs.edgeBlend = settings_.edgeBlend;
    inputs.statusRecord = this->statusRecord();
    if (reports_.areWanted()) inputs.path = &boundary_;
    const BoundaryOutcome outcome = fitBoundaryPath(inputs, state_->compositeMask);
    const bool aborted = inputs.statusRecord != nullptr && inputs.statusRecord->aborted != 0;
    if (observer_ != nullptr && noteOf(outcome) != nullptr && !aborted) {
        observer_->note(noteOf(outcome));
    }
    pathBand_.release();
    bandGradient_.release();
}

/// The region covered by texture: a replay places blocks inside the window only.
template <typename Pixel>
Region SynthesisNode<Pixel>::placedRegion() const
{
    return settings_.useStoredBlocks ? this->region() : state_->fillBounds;
}

template <typename Pixel>
void SynthesisNode<Pixel>::beginPass()
{
    reports_.reportComposite(textures_.size(), placedRegion(), boundary_);
    compositing_.emplace(observer_, "composite");
    if (laidPart_ == laid_.extent()) return;
    Pixel opaque{};
    opaque.a = PixelTraits<Pixel>::stored(kMax);
    opaque_.assign(static_cast<std::size_t>(this->region().x1 - this->region().x0), opaque);
}

template <typename Pixel>
void SynthesisNode<Pixel>::endPass()
{
    compositing_.reset();
    laid_.release();
}

/// Runs after an abort, too, which skips the pass or its end.
template <typename Pixel>
void SynthesisNode<Pixel>::end()
{
    compositing_.reset();
    keepLaid();
}

/// The final composite, on the rows of one worker.
template <typename Pixel>
void SynthesisNode<Pixel>::processPass()
{
    const auto [yBegin, yEnd] = this->threadRows();
    for (int y = yBegin; y < yEnd; ++y) compositeRow(y);
}

/// The part of a row of the window that blocks cover, also where they were left out.
template <typename Pixel>
Region SynthesisNode<Pixel>::coveredIn(int y) const
{
    const Region row{this->region().x0, y, this->region().x1, y + 1};
    const Region covered = laid_.isUsable() ? laid_.extent().within(row) : Region{};
    return covered.isEmpty() ? Region{row.x0, y, row.x0, y} : covered;
}

/// Composites one row. The gain and the mask are read as EdgeNone: outside them there is no gain,
/// and the mask has its fill value.
template <typename Pixel>
void SynthesisNode<Pixel>::compositeRow(int y)
{
    const Region& region = this->region();
    const RowReader source(this->other(), y);
    RowWriter out(this->target(), y);
    const Region covered = coveredIn(y);
    const Region part = laidPart_.within(covered);
    const PixelSpan<Pixel> laid = part.isEmpty() ? PixelSpan<Pixel>{region.x0, region.x0, nullptr}
                                                 : RowReader(laid_, y).interior(part.x0, part.x1);
    const auto gain = RowReader(state_->luminanceGain, y).interior(region.x0, region.x1);
    const auto mask = RowReader(state_->compositeMask, y).interior(region.x0, region.x1);
    // Between these the same maps have pixels.
    std::array ends{region.x0,  covered.x0, covered.x1, laid.begin, laid.end,
                    gain.begin, gain.end,   mask.begin, mask.end,   region.x1};
    std::ranges::sort(ends);
    for (std::size_t i = 1; i < ends.size(); ++i) {
        const int x = ends[i - 1];
        if (x == ends[i]) continue;
        const auto within = [x](const auto& span) {
            return x >= span.begin && x < span.end ? span.pixels + (x - span.begin) : nullptr;
        };
        const Pixel* texture = within(laid);
        if (texture == nullptr && x >= covered.x0 && x < covered.x1) {
            texture = opaque_.data() + (x - region.x0);
        }
        composite<Pixel>(source, {.begin = x,
                                  .end = ends[i],
                                  .out = out.from(x),
                                  .texture = texture != nullptr ? texture : out.from(x),
                                  .mask = within(mask),
                                  .fill = state_->compositeMask.fillValue(),
                                  .gain = within(gain)});
    }
}

template class SynthesisNode<PixelRGBA8>;
template class SynthesisNode<PixelRGBA16>;
template class SynthesisNode<PixelRGBAf>;

}  // namespace Orvane::Engine
