#include "engine/filter/LuminanceMatch.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "engine/filter/LumaOf.h"
#include "engine/map/ExactMath.h"
#include "engine/map/MapRow.h"
#include "engine/map/PixelTraits.h"

namespace Orvane::Engine {
namespace {

constexpr float kMinBandWeight = 0.01f;  ///< weaker band pixels are not measured
constexpr int kLumaRadius = 5;           ///< pixels
constexpr int kTaskRows = 64;            ///< rows of the band that a worker takes at once
/// Larger than any image; bounds the line buffers.
constexpr int kMaxReach = 100'000;

Region united(const Region& a, const Region& b)
{
    if (a.isEmpty()) return b;
    if (b.isEmpty()) return a;
    return {std::min(a.x0, b.x0), std::min(a.y0, b.y0), std::max(a.x1, b.x1), std::max(a.y1, b.y1)};
}

Region unitedOf(const std::vector<Region>& parts)
{
    Region all;
    for (const Region& part : parts) all = united(all, part);
    return all;
}

/// No correction where the texture is black.
float lumaRatio(float source, float destination)
{
    return destination == 0.0f ? 1.0f : source / destination;
}

/// Columns of an image's luminance, 0 outside of a region.
template <typename Pixel>
void readLumaInside(const Region& region, const Map<Pixel>& image, int y, int x0, int x1, float* to)
{
    const int begin = std::clamp(region.x0, x0, x1), end = std::clamp(region.x1, begin, x1);
    std::fill(to, to + (begin - x0), 0.0f);
    readLuma(image, y, begin, end, to + (begin - x0));
    std::fill(to + (end - x0), to + (x1 - x0), 0.0f);
}

}  // namespace

/// The softened luminance of both images; makes measurements of them.
template <typename Pixel>
class LuminanceMatch<Pixel>::Planes final : public BlurPlanes {
public:
    Planes(const LuminanceMatch& match, std::vector<Region>& found) : match_(match), found_(found)
    {}

    bool read(int y, int x0, int x1, float* first, float* second) const override
    {
        readLumaInside(match_.region(), *match_.source_, y, x0, x1, first);
        readLumaInside(match_.region(), match_.target(), y, x0, x1, second);
        return true;
    }

    void write(int x, int y, int width, int height, const float* first,
               const float* second) override
    {
        Region& found = found_[static_cast<std::size_t>(x - match_.inBand_.x0) / Tiles::kSide];
        for (int j = 0; j < height; ++j, first += Tiles::kSide, second += Tiles::kSide) {
            RowWriter known(match_.spread_->measured(), y + j);
            RowWriter ratio(match_.spread_->ratio(), y + j);
            for (int i = 0; i < width; ++i) {
                if (known[x + i] == 0) continue;
                const float measured = lumaRatio(first[i], second[i]);
                known[x + i] = std::isfinite(measured) ? 1 : 0;
                if (known[x + i] == 0) continue;
                ratio[x + i] = measured;
                found = united(found, {x + i, y + j, x + i + 1, y + j + 1});
            }
        }
    }

private:
    const LuminanceMatch& match_;
    std::vector<Region>& found_;  ///< for each column of tiles: holds what was measured
};

template <typename Pixel>
void LuminanceMatch<Pixel>::process(const Map<Pixel>& destination)
{
    this->run("Sampler", nullptr, &destination);
}

template <typename Pixel>
void LuminanceMatch<Pixel>::runPasses()
{
    const Region& area = this->region();
    if (area.isEmpty()) return;
    limitReach();
    SharedWork work(this->statusRecord());
    TileBlur blur(work);
    LuminanceSpread spread(
        work, blur, {area, needed_.value_or(area).within(area), reach_, halfReach_, maxPasses_});
    if (!spread.makeRoom() || !blur.makeRoom(area.x1 - area.x0, area.y1 - area.y0)) {
        reportNoMemory();
        return;
    }
    const Borrowed borrowSpread(spread_, &spread);
    if (!findBand(work) || inBand_.isEmpty() || !measure(blur)) return;
    spread.run(inBand_, measured_, *luminanceGain_);
}

template <typename Pixel>
void LuminanceMatch<Pixel>::reportNoMemory() const
{
    RenderStatus* const status = this->statusRecord();
    if (status == nullptr) return;
    status->aborted = 1;
    status->errorCode = kErrorOutOfMemory;
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
    reach_ = std::min(truncateToInt(limited), kMaxReach);
    halfReach_ = truncateToInt(limited * 0.5f);
}

/// Marks the pixels of the band as known, and finds their bounds. False after an abort.
template <typename Pixel>
bool LuminanceMatch<Pixel>::findBand(SharedWork& work)
{
    const Region part = bandBounds_.value_or(this->region()).within(this->region());
    inBand_ = {};
    if (part.isEmpty()) return true;
    std::vector<Region> found(static_cast<std::size_t>((part.y1 - part.y0 - 1) / kTaskRows + 1));
    inBand_ = part;
    const bool isDone = work.run(static_cast<int>(found.size()), [&](int task, int) {
        const int begin = part.y0 + task * kTaskRows;
        for (int y = begin; y < std::min(begin + kTaskRows, part.y1); ++y) {
            findBandRow(y, found[static_cast<std::size_t>(task)]);
        }
    });
    inBand_ = unitedOf(found);
    return isDone;
}

/// The same for one row.
template <typename Pixel>
void LuminanceMatch<Pixel>::findBandRow(int y, Region& found)
{
    const RowReader band(*band_, y);
    RowWriter known(spread_->measured(), y);
    const int count = inBand_.x1 - inBand_.x0;
    Pixel8* to = known.from(inBand_.x0);
    // exact: one float product with the float nearest 1/M. NaN is not in the band.
    constexpr float kScale = 1.0f / PixelTraits<Pixel>::kMax;
    unsigned int any = 0;
    if (const float* span = band.span(inBand_.x0, count)) {
        for (int i = 0; i < count; ++i) {
            to[i] = span[i] * kScale > kMinBandWeight ? 1 : 0;
            any |= to[i];
        }
    } else {
        for (int i = 0; i < count; ++i) {
            to[i] = band[inBand_.x0 + i] * kScale > kMinBandWeight ? 1 : 0;
            any |= to[i];
        }
    }
    if (any == 0) return;
    const auto first = static_cast<int>(std::find(to, to + count, 1) - to);
    int end = count;
    while (to[end - 1] == 0) --end;
    found = united(found, {inBand_.x0 + first, y, inBand_.x0 + end, y + 1});
}

/// The first pass: measures the ratio in the band. False after an abort.
template <typename Pixel>
bool LuminanceMatch<Pixel>::measure(TileBlur& blur)
{
    Tiles tiles;
    tiles.cover(inBand_);
    for (int y = inBand_.y0; y < inBand_.y1; ++y) {
        const Pixel8* known = RowWriter(spread_->measured(), y).from(inBand_.x0);
        for (int i = 0; i < inBand_.x1 - inBand_.x0; ++i) {
            if (known[i] != 0) tiles.want(i / Tiles::kSide, (y - inBand_.y0) / Tiles::kSide);
        }
    }
    std::vector<Region> found(static_cast<std::size_t>(tiles.columns()));
    Planes planes(*this, found);
    const Region& area = this->region();
    const TileBlur::Box box{.radius = kLumaRadius,
                            .cornerX = area.x0,
                            .cornerY = area.y0,
                            .readable = {area.y0, area.y1}};
    if (!blur.run(tiles, box, planes, {})) return false;
    measured_ = unitedOf(found);
    return true;
}

template class LuminanceMatch<PixelRGBA8>;
template class LuminanceMatch<PixelRGBA16>;
template class LuminanceMatch<PixelRGBAf>;

}  // namespace Orvane::Engine
