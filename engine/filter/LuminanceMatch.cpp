#include "engine/filter/LuminanceMatch.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "engine/filter/BandNodes.h"
#include "engine/filter/FillAndCopy.h"
#include "engine/filter/LumaOf.h"
#include "engine/map/ExactMath.h"
#include "engine/map/MapRow.h"
#include "engine/map/PixelTraits.h"

namespace Orvane::Engine {
namespace {

constexpr float kMinBandWeight = 0.01f;  ///< weaker band pixels are not measured
constexpr float kKnown = 0.1f;           ///< the weight from which a pixel counts as known
constexpr int kLumaRadius = 5;           ///< pixels

Region united(const Region& a, const Region& b)
{
    if (a.isEmpty()) return b;
    if (b.isEmpty()) return a;
    return {std::min(a.x0, b.x0), std::min(a.y0, b.y0), std::max(a.x1, b.x1), std::max(a.y1, b.y1)};
}

bool contains(const Region& outer, const Region& inner)
{
    return inner.isEmpty() || (inner.x0 >= outer.x0 && inner.y0 >= outer.y0 &&
                               inner.x1 <= outer.x1 && inner.y1 <= outer.y1);
}

/// No correction where the texture is black.
float lumaRatio(float source, float destination)
{
    return destination == 0.0f ? 1.0f : source / destination;
}

}  // namespace

template <typename Pixel>
void LuminanceMatch<Pixel>::process(const Map<Pixel>& destination)
{
    this->run("Sampler", nullptr, &destination);
}

template <typename Pixel>
void LuminanceMatch<Pixel>::runPasses()
{
    if (!prepare()) return;
    Outcome outcome = measure();
    for (int left = maxPasses_; left > 0 && !isAborted(); --left) {
        outcome = spread(outcome.knownBounds);
        // The next known pixels depend on the current ones only, and monotonically. So a pass that
        // adds none is followed by others that add none, and one that ends in the state of two
        // passes ago, as with three pixels in a line, starts a cycle. There are no longer cycles
        // (Goles and Olivos 1981).
        if (outcome.allKnown || !outcome.becameKnown || !outcome.leftEarlier) break;
    }
}

/// Makes the work maps. False without memory, and when there is nothing to do.
template <typename Pixel>
bool LuminanceMatch<Pixel>::prepare()
{
    if (this->region().isEmpty()) return false;
    if (!makeMaps()) {
        if (RenderStatus* status = this->statusRecord()) {
            status->aborted = 1;
            status->errorCode = kErrorOutOfMemory;
        }
        return false;
    }
    limitReach();
    active_ = {};
    clear(ratio_);
    clear(knownBefore_);
    BandWeight weight(PixelTraits<Pixel>::kMax);
    weight.setStatusRecord(this->statusRecord());
    weight.process(*band_, known_);
    takeLuma(this->target(), destLuma_);
    takeLuma(*source_, sourceLuma_);
    return true;
}

template <typename Pixel>
bool LuminanceMatch<Pixel>::makeMaps()
{
    const Region& area = this->region();
    for (Map<Pixel32f>* map : {&ratio_, &known_, &knownBefore_, &sourceLuma_, &destLuma_}) {
        map->setSize(area.x1 - area.x0, area.y1 - area.y0);
        map->placeAt(area.x0, area.y0);
        map->allocate();
        if (!map->isUsable()) return false;
    }
    return true;
}

/// Converts `luminanceBlur` to integer radii.
template <typename Pixel>
void LuminanceMatch<Pixel>::limitReach()
{
    // Beyond twice the region's longer side every box holds the whole region: its mean, and whether
    // four known pixels are enough, no longer change.
    const Region& area = this->region();
    const int longerSide = std::max(area.x1 - area.x0, area.y1 - area.y0);
    const auto maxReach = 2.0f * (static_cast<float>(longerSide) + 2.0f);
    const float limited = luminanceBlur_ > 0.0f ? std::min(luminanceBlur_, maxReach) : 0.0f;
    reach_ = truncateToInt(limited);
    halfReach_ = truncateToInt(limited * 0.5f);
}

template <typename Pixel>
void LuminanceMatch<Pixel>::takeLuma(const Map<Pixel>& image, Map<Pixel32f>& luma)
{
    LumaOf<Pixel> lumaOf;
    lumaOf.setStatusRecord(this->statusRecord());
    lumaOf.process(image, luma);
    blur(luma, luma, kLumaRadius);
}

template <typename Pixel>
void LuminanceMatch<Pixel>::clear(Map<Pixel32f>& map)
{
    ConstantFill<Pixel32f> fill(0.0f);
    fill.setStatusRecord(this->statusRecord());
    fill.process(&map);
}

template <typename Pixel>
void LuminanceMatch<Pixel>::blur(const Map<Pixel32f>& from, Map<Pixel32f>& to, int radius)
{
    const auto pixels = static_cast<float>(radius);
    blur_.setStatusRecord(this->statusRecord());
    blur_.setRegion(active_.isEmpty() ? this->region() : active_);
    blur_.setRadius(pixels, pixels);
    blur_.process(from, to);
}

/// The first pass: measures the ratio in the band.
template <typename Pixel>
typename LuminanceMatch<Pixel>::Outcome LuminanceMatch<Pixel>::measure()
{
    const Outcome outcome = runRows(&LuminanceMatch::measureRow);
    // Later passes do not need these maps; reuse their storage.
    support_ = std::move(sourceLuma_);
    knownEarlier_ = std::move(destLuma_);
    clear(knownEarlier_);
    return outcome;
}

/// Every later pass: spreads the ratio by one step from the known pixels.
template <typename Pixel>
typename LuminanceMatch<Pixel>::Outcome LuminanceMatch<Pixel>::spread(const Region& known)
{
    widenActive(known);
    blur(known_, support_, halfReach_);
    blur(known_, known_, reach_);
    blur(ratio_, ratio_, reach_);
    Outcome outcome = runRows(&LuminanceMatch::spreadRow);
    outcome.allKnown = outcome.allKnown && contains(active_, neededPart());
    std::swap(knownEarlier_, knownBefore_);
    MapCopy<Pixel32f> copy;
    copy.setStatusRecord(this->statusRecord());
    copy.process(known_, knownBefore_);
    return outcome;
}

/// Runs one pass over the rows of the region, on all workers.
template <typename Pixel>
typename LuminanceMatch<Pixel>::Outcome LuminanceMatch<Pixel>::runRows(RowWork work)
{
    rowWork_ = work;
    // A thread that has rows has an index below the number of rows.
    outcomes_.assign(static_cast<std::size_t>(this->region().y1 - this->region().y0), Outcome{});
    this->runPass();
    Outcome all;
    for (const Outcome& outcome : outcomes_) all.add(outcome);
    return all;
}

template <typename Pixel>
void LuminanceMatch<Pixel>::Outcome::add(const Outcome& other)
{
    allKnown = allKnown && other.allKnown;
    becameKnown = becameKnown || other.becameKnown;
    leftEarlier = leftEarlier || other.leftEarlier;
    knownBounds = united(knownBounds, other.knownBounds);
}

template <typename Pixel>
void LuminanceMatch<Pixel>::processPass()
{
    const RowRange rows = this->threadRows();
    if (rows.isEmpty()) return;
    Outcome outcome;
    for (int y = rows.begin; y < rows.end; ++y) (this->*rowWork_)(y, outcome);
    outcomes_[static_cast<std::size_t>(this->threadIndex())] = outcome;
}

template <typename Pixel>
Region LuminanceMatch<Pixel>::neededPart() const
{
    const Region& area = this->region();
    const Region part = needed_.value_or(area);
    return {std::max(part.x0, area.x0), std::max(part.y0, area.y0), std::min(part.x1, area.x1),
            std::min(part.y1, area.y1)};
}

/// Grows the active part by the reach of a blur, beyond which the next pass changes nothing.
template <typename Pixel>
void LuminanceMatch<Pixel>::widenActive(const Region& known)
{
    if (known.isEmpty()) return;
    const Region& area = this->region();
    const int reach = reach_ + 1;
    active_ =
        united(active_, {std::max(known.x0 - reach, area.x0), std::max(known.y0 - reach, area.y0),
                         std::min(known.x1 + reach, area.x1), std::min(known.y1 + reach, area.y1)});
}

template <typename Pixel>
void LuminanceMatch<Pixel>::measureRow(int y, Outcome& outcome)
{
    RowWriter known(known_, y);
    RowWriter ratio(ratio_, y);
    const RowReader source(sourceLuma_, y);
    const RowReader destination(destLuma_, y);
    for (int x = this->region().x0; x < this->region().x1; ++x) {
        const float measured = lumaRatio(source[x], destination[x]);
        const bool counts = known[x] > kMinBandWeight && std::isfinite(measured);
        known[x] = counts ? 1.0f : 0.0f;
        if (!counts) continue;
        ratio[x] = measured;
        outcome.knownBounds = united(outcome.knownBounds, {x, y, x + 1, y + 1});
    }
}

/// Spreads along one row: the blurred ratio over the blurred weight is the mean ratio of the known
/// pixels around.
template <typename Pixel>
void LuminanceMatch<Pixel>::spreadRow(int y, Outcome& outcome)
{
    if (y < active_.y0 || y >= active_.y1) return;
    const float k = 1.0f + static_cast<float>(halfReach_);
    const float threshold = 1.0f / (k * k);
    RowWriter known(known_, y);
    RowWriter ratio(ratio_, y);
    const RowReader support(support_, y);
    const RowReader before(knownBefore_, y);
    const RowReader earlier(knownEarlier_, y);
    const Region needed = neededPart();
    const bool rowNeeded = y >= needed.y0 && y < needed.y1;
    int firstKnown = active_.x1, lastKnown = active_.x0 - 1;
    for (int x = active_.x0; x < active_.x1; ++x) {
        const bool isKnown = support[x] >= threshold;
        ratio[x] = isKnown ? ratio[x] / known[x] : 0.0f;
        known[x] = isKnown ? 1.0f : 0.0f;
        if (isKnown) {
            firstKnown = std::min(firstKnown, x);
            lastKnown = x;
        }
        if (isKnown && before[x] < kKnown) {
            outcome.becameKnown = true;
            if (Pixel32f* gain = luminanceGain_->translate(x, y)) *gain = ratio[x];
        }
        if (!isKnown && rowNeeded && x >= needed.x0 && x < needed.x1) outcome.allKnown = false;
        if (known[x] != earlier[x]) outcome.leftEarlier = true;
    }
    outcome.knownBounds = united(outcome.knownBounds, {firstKnown, y, lastKnown + 1, y + 1});
}

template <typename Pixel>
bool LuminanceMatch<Pixel>::isAborted() const
{
    return this->statusRecord() != nullptr && this->statusRecord()->aborted != 0;
}

template class LuminanceMatch<PixelRGBA8>;
template class LuminanceMatch<PixelRGBA16>;
template class LuminanceMatch<PixelRGBAf>;

}  // namespace Orvane::Engine
