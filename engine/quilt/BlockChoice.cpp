#include "engine/quilt/BlockChoice.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Orvane::Engine {
namespace {

constexpr std::size_t kMaxContenders = 256;
/// Pixels compared between two polls for an abort; some milliseconds.
constexpr std::int64_t kPixelsBetweenPolls = 1 << 21;
/// A position drawn takes about as long as so many pixels compared.
constexpr std::int64_t kPixelsPerPosition = 8;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// The columns [begin, end) that hold all positive weights of a row.
struct Columns {
    int begin, end;
};

Columns positiveOf(const float* weights, int count)
{
    int any = 0;
    for (int i = 0; i < count; ++i) any |= weights[i] > 0.0f ? 1 : 0;
    if (any == 0) return {0, 0};
    Columns columns{0, count};
    while (!(weights[columns.begin] > 0.0f)) ++columns.begin;
    while (!(weights[columns.end - 1] > 0.0f)) --columns.end;
    return columns;
}

}  // namespace

template <typename Pixel>
Candidate BlockChoice<Pixel>::best(CandidateDraw& draw, const BlockPlace& place,
                                   const BlockSurroundings<Pixel>& surroundings,
                                   const std::function<bool()>& stops)
{
    start(place, surroundings);
    std::int64_t compared = 0, drawn = 0;
    while (const std::optional<Candidate> candidate = draw.next()) {
        consider(*candidate);
        compared += pixels_ + kPixelsPerPosition * (draw.positionsDrawn() - drawn);
        drawn = draw.positionsDrawn();
        if (compared < kPixelsBetweenPolls) continue;
        compared = 0;
        if (stops()) break;
    }
    dropInferior();
    if (!hasBest_ && contenders_.size() == 1) return contenders_.front().candidate;
    settle();
    return best_;
}

template <typename Pixel>
void BlockChoice<Pixel>::start(const BlockPlace& place,
                               const BlockSurroundings<Pixel>& surroundings)
{
    place_ = place;
    around_ = surroundings;
    contenders_.clear();
    hasBest_ = false;
    bestError_ = std::numeric_limits<float>::max();
    upper_ = kInfinity;
    known_ = {};
    if (around_.known != nullptr) findKnown();
    if (around_.left != nullptr && place.overlapW > 0) {
        const auto& texture = around_.textures[static_cast<std::size_t>(around_.left->texture)];
        leftRows_ = texture.rows(around_.left->x + around_.leftShift, around_.left->y,
                                 place.overlapW, place.height, leftCopy_);
    }
    pixels_ = knownStrip().pixels() + leftStrip().pixels() + belowStrip().pixels();
}

/// Finds the part of the block that holds known pixels.
template <typename Pixel>
void BlockChoice<Pixel>::findKnown()
{
    // The weights are stored where they can be positive.
    const Region block{place_.x, place_.y, place_.x + place_.width, place_.y + place_.height};
    const Region part = block.within(around_.weights->storedExtent());
    if (part.isEmpty()) return;
    const int width = part.x1 - part.x0, height = part.y1 - part.y0;
    const Rows<float> weights =
        rowsOf(*around_.weights, part.x0, part.y0, width, height, weightCopy_);
    Region box{width, height, 0, 0};
    for (int y = 0; y < height; ++y) {
        const Columns columns = positiveOf(weights.at(y), width);
        if (columns.begin >= columns.end) continue;
        box = {std::min(box.x0, columns.begin), std::min(box.y0, y), std::max(box.x1, columns.end),
               y + 1};
    }
    if (box.isEmpty()) return;
    weightRows_ = weights.from(box.x0, box.y0);
    const int right = part.x0 - place_.x, down = part.y0 - place_.y;
    box = {box.x0 + right, box.y0 + down, box.x1 + right, box.y1 + down};
    known_ = box;
    knownRows_ = rowsOf(*around_.known, place_.x + box.x0, place_.y + box.y0, box.x1 - box.x0,
                        box.y1 - box.y0, knownCopy_);
}

template <typename Pixel>
Strip<Pixel> BlockChoice<Pixel>::knownStrip() const
{
    if (known_.isEmpty()) return {};
    return {.a = knownRows_,
            .b = loaded_.first != nullptr ? loaded_.from(known_.x0, known_.y0) : loaded_,
            .weights = weightRows_,
            .width = known_.x1 - known_.x0,
            .height = known_.y1 - known_.y0,
            .firstRow = known_.y0,
            .allRows = place_.height};
}

template <typename Pixel>
Strip<Pixel> BlockChoice<Pixel>::leftStrip() const
{
    if (around_.left == nullptr) return {};
    return {.a = leftRows_,
            .b = loaded_,
            .weights = {},
            .width = place_.overlapW,
            .height = place_.height};
}

template <typename Pixel>
Strip<Pixel> BlockChoice<Pixel>::belowStrip() const
{
    if (around_.below.first == nullptr) return {};
    return {.a = around_.below,
            .b = loaded_,
            .weights = {},
            .width = place_.width,
            .height = place_.overlapH};
}

/// Makes a candidate the current one.
template <typename Pixel>
void BlockChoice<Pixel>::load(const Candidate& candidate)
{
    loaded_ = around_.textures[static_cast<std::size_t>(candidate.texture)].rows(
        candidate.x, candidate.y, place_.width, place_.height, candidateCopy_);
}

template <typename Pixel>
void BlockChoice<Pixel>::consider(const Candidate& candidate)
{
    if (pixels_ == 0) {  // all errors are 0: the first candidate is the best
        if (contenders_.empty()) contenders_.push_back({candidate, 0.0});
        return;
    }
    Contender contender{candidate, -kInfinity};
    if (canBound(pixels_)) {
        load(candidate);
        const double rough = roughError(roughLimit(upper_, pixels_));
        // NaN and sums near the end of the float range have no bounds.
        if (rough < std::numeric_limits<float>::max() / 4) {
            const ErrorBounds bounds = boundsOf(rough, pixels_);
            if (bounds.lower > upper_) return;
            contender.lower = bounds.lower;
            upper_ = std::min(upper_, bounds.upper);
        }
    }
    contenders_.push_back(contender);
    if (contenders_.size() < kMaxContenders) return;
    dropInferior();
    if (contenders_.size() > kMaxContenders / 2) settle();
}

/// The rough error of the current candidate, summed until it exceeds the limit.
template <typename Pixel>
double BlockChoice<Pixel>::roughError(float limit) const
{
    double sum = 0.0;
    for (const Strip<Pixel>& strip : {leftStrip(), belowStrip(), knownStrip()}) {
        sum += error_.rough(strip, limit);
        if (sum > limit) break;
    }
    return sum;
}

/// Drops the contenders whose error is certainly above the best one's.
template <typename Pixel>
void BlockChoice<Pixel>::dropInferior()
{
    std::erase_if(contenders_, [this](const Contender& c) { return c.lower > upper_; });
}

/// Measures the contenders exactly and keeps the best.
template <typename Pixel>
void BlockChoice<Pixel>::settle()
{
    for (std::size_t i = 0; i < contenders_.size(); ++i) {
        const Candidate& candidate = contenders_[i].candidate;
        const auto isSame = [&candidate](const Contender& c) { return c.candidate == candidate; };
        const auto before = contenders_.begin() + static_cast<std::ptrdiff_t>(i);
        if (std::any_of(contenders_.begin(), before, isSame)) continue;  // cannot beat itself
        load(candidate);
        const float error = exactError(bestError_);
        // Ties keep the earlier candidate. The first one is the default when no error is below the
        // initial limit, as with pixels that are not finite.
        if (error < bestError_ || !hasBest_) best_ = candidate;
        if (error < bestError_) bestError_ = error;
        hasBest_ = true;
    }
    contenders_.clear();
    upper_ = std::min(upper_, static_cast<double>(bestError_));
}

/// The error of the current candidate, summed until it reaches `best`.
template <typename Pixel>
float BlockChoice<Pixel>::exactError(float best)
{
    float error = 0.0f;
    // exact: float, in this order. No term is negative and rounding is monotonic, so a partial sum
    // that reaches `best` decides.
    for (const Strip<Pixel>& strip : {knownStrip(), leftStrip(), belowStrip()}) {
        error += error_.exact(strip);
        if (error >= best) break;
    }
    return error;
}

template class BlockChoice<PixelRGBA8>;
template class BlockChoice<PixelRGBA16>;
template class BlockChoice<PixelRGBAf>;

}  // namespace Orvane::Engine
