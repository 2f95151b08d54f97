#include "render/MatteAreas.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace Tesseret::Render {

namespace {

constexpr std::int32_t kOutside = 0;
// Before the areas have their labels.
constexpr std::int32_t kUnmasked = -1;
constexpr std::int32_t kInside = -2;

/// Cells round the matte: an outer ring that ends every run, and an inner one of unmasked cells
/// that connects everything open to the outside.
constexpr int kRing = 2;

std::size_t padded(int length)
{
    return static_cast<std::size_t>(length) + 2 * kRing;
}

}  // namespace

MatteAreas::MatteAreas(std::shared_ptr<const Picture> matte, Polarity polarity)
    : matte_(std::move(matte)),
      polarity_(polarity),
      stride_(padded(matte_->width())),
      labels_(stride_ * padded(matte_->height()), kOutside)
{
    markMasked();
    flood(stride_ + 1, kUnmasked, kOutside);
    std::ranges::replace(labels_, kUnmasked, kInside);  // holes
    labelAreas();
}

std::size_t MatteAreas::cellAt(int x, int y) const
{
    const OfxRectI bounds = matte_->bounds();
    return static_cast<std::size_t>(y - bounds.y1 + kRing) * stride_ +
           static_cast<std::size_t>(x - bounds.x1 + kRing);
}

std::optional<std::size_t> MatteAreas::at(int x, int y) const
{
    if (!matte_->contains(x, y)) return std::nullopt;
    const Label label = labels_[cellAt(x, y)];
    return label > kOutside ? std::optional(static_cast<std::size_t>(label) - 1) : std::nullopt;
}

void MatteAreas::markMasked()
{
    const OfxRectI bounds = matte_->bounds();
    for (int y = bounds.y1 - 1; y < bounds.y2 + 1; ++y) {
        std::fill_n(labels_.begin() + static_cast<std::ptrdiff_t>(cellAt(bounds.x1 - 1, y)),
                    matte_->width() + 2, kUnmasked);
    }
    atDepth(matte_->depth(), [&]<typename Channel>(Channel) {
        for (int y = bounds.y1; y < bounds.y2; ++y) {
            const auto* value = matte_->pixel<Channel>(bounds.x1, y);
            Label* label = &labels_[cellAt(bounds.x1, y)];
            for (int x = bounds.x1; x < bounds.x2; ++x, ++value, ++label) {
                if (isMasked(masking(*value, polarity_))) *label = kInside;
            }
        }
    });
}

/// Relabels the cells connected to the start from `from` to `to`, run by run; returns their box.
OfxRectI MatteAreas::flood(std::size_t start, Label from, Label to)
{
    constexpr int kMax = std::numeric_limits<int>::max();
    OfxRectI box{kMax, kMax, -kMax, -kMax};
    const OfxRectI bounds = matte_->bounds();
    std::vector<std::size_t> open{start};
    while (!open.empty()) {
        std::size_t first = open.back();
        open.pop_back();
        if (labels_[first] != from) continue;
        std::size_t end = first + 1;
        while (labels_[first - 1] == from) --first;
        while (labels_[end] == from) ++end;
        for (std::size_t cell = first; cell < end; ++cell) {
            labels_[cell] = to;
            for (const std::size_t next : {cell - stride_, cell + stride_}) {
                const bool startsRun = cell == first || labels_[next - 1] != from;
                if (labels_[next] == from && startsRun) open.push_back(next);
            }
        }
        const int x = bounds.x1 - kRing + static_cast<int>(first % stride_);
        const int y = bounds.y1 - kRing + static_cast<int>(first / stride_);
        box = {std::min(box.x1, x), std::min(box.y1, y),
               std::max(box.x2, x + static_cast<int>(end - first)), std::max(box.y2, y + 1)};
    }
    return box;
}

void MatteAreas::labelAreas()
{
    for (std::size_t cell = 0; cell < labels_.size(); ++cell) {
        if (labels_[cell] != kInside) continue;
        boxes_.push_back(flood(cell, kInside, static_cast<Label>(boxes_.size() + 1)));
    }
}

Picture MatteAreas::only(const std::vector<std::size_t>& areas, const OfxRectI& bounds) const
{
    Picture result(bounds, matte_->depth(), Components::Alpha);
    result.setPixelAspectRatio(matte_->pixelAspectRatio());
    result.setAlpha(matte_->alpha());
    std::vector<char> isWanted(boxes_.size() + 1, 0);  // by label
    for (const std::size_t area : areas) {
        if (area < boxes_.size()) isWanted[area + 1] = 1;
    }
    atDepth(matte_->depth(), [&]<typename Channel>(Channel zero) {
        const Channel unmasked = masking(zero, polarity_);
        const Channel full = masking(MatteScale<Channel>::kFull, polarity_);
        for (int y = bounds.y1; y < bounds.y2; ++y) {
            const auto* from = matte_->pixel<Channel>(bounds.x1, y);
            const Label* label = &labels_[cellAt(bounds.x1, y)];
            auto* to = result.pixel<Channel>(bounds.x1, y);
            for (int x = bounds.x1; x < bounds.x2; ++x, ++from, ++label, ++to) {
                const bool isHole = !isMasked(masking(*from, polarity_));
                *to = isWanted[static_cast<std::size_t>(*label)] == 0 ? unmasked
                      : isHole                                        ? full
                                                                      : *from;
            }
        }
    });
    return result;
}

bool MatteAreas::reachInto(const OfxRectI& box, std::size_t count) const
{
    const OfxRectI common = intersection(box, matte_->bounds());
    const auto last = static_cast<Label>(std::min(count, boxes_.size()));
    for (int y = common.y1; y < common.y2; ++y) {
        const Label* const row = &labels_[cellAt(common.x1, y)];
        const auto isFilled = [last](Label label) { return label > kOutside && label <= last; };
        if (std::any_of(row, row + (common.x2 - common.x1), isFilled)) return true;
    }
    return false;
}

}  // namespace Tesseret::Render
