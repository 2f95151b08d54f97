#include "engine/mask/FillMask.h"

#include <algorithm>
#include <optional>
#include <ranges>
#include <span>
#include <vector>

#include "engine/map/ExactMath.h"
#include "engine/map/MapRow.h"
#include "engine/map/PixelTraits.h"
#include "engine/map/Random.h"
#include "engine/mask/RegionLabeller.h"
#include "engine/pass/SharedWork.h"

namespace Orvane::Engine {
namespace {

constexpr Pixel32i kUnmasked = RegionLabeller::kUnmasked;

/// A mask value scaled to 0 to 255, clamped and truncated; 0 for NaN.
template <typename MaskPixel>
Pixel32i toByte(MaskPixel value)
{
    // exact: one float product, truncated toward zero.
    const float scaled = static_cast<float>(value) * MaskTraits<MaskPixel>::kToByte;
    if (scaled >= 255.0f) return 255;
    return scaled > 0.0f ? static_cast<Pixel32i>(scaled) : 0;
}

/// Copies a mask onto a larger map as bytes.
template <typename MaskPixel>
class MaskPadding final : public Sampler<const Map<MaskPixel>, Map<Pixel32i>> {
public:
    void processPass() override
    {
        const Region& region = this->region();
        const auto [yBegin, yEnd] = this->threadRows();
        const Pixel32i outside = toByte(this->other().fillValue());
        for (int y = yBegin; y < yEnd; ++y) {
            // The mask is read as EdgeNone: beside its pixels there is its fill value.
            const auto mask = RowReader(this->other(), y).interior(region.x0, region.x1);
            Pixel32i* const padded = RowWriter(this->target(), y).from(region.x0);
            std::fill(padded, padded + (mask.begin - region.x0), outside);
            std::transform(mask.pixels, mask.pixels + (mask.end - mask.begin),
                           padded + (mask.begin - region.x0), toByte<MaskPixel>);
            std::fill(padded + (mask.end - region.x0), padded + (region.x1 - region.x0), outside);
        }
    }
};

/// The smallest region that holds every pixel of some rows of a mask whose byte is not 0.
template <typename MaskPixel>
Region maskedBoundsOf(const Map<MaskPixel>& mask, int top, int bottom)
{
    const int left = mask.xAxis().offset, right = left + mask.width();
    Region bounds{right, bottom, left, top};
    // exact: a product of at least 1 does not truncate to 0; NaN does.
    const auto isMasked = [](MaskPixel value) {
        return static_cast<float>(value) * MaskTraits<MaskPixel>::kToByte >= 1.0f;
    };
    for (int y = top; y < bottom; ++y) {
        const auto row = RowReader(mask, y).interior(left, right);
        const std::span<const MaskPixel> pixels(row.pixels,
                                                static_cast<std::size_t>(row.end - row.begin));
        int any = 0;
        for (const MaskPixel value : pixels) any |= isMasked(value) ? 1 : 0;
        if (any == 0) continue;
        const auto first = std::ranges::find_if(pixels, isMasked) - pixels.begin();
        const auto last = std::find_if(pixels.rbegin(), pixels.rend(), isMasked).base();
        bounds = {std::min(bounds.x0, row.begin + static_cast<int>(first)), std::min(bounds.y0, y),
                  std::max(bounds.x1, row.begin + static_cast<int>(last - pixels.begin())), y + 1};
    }
    return bounds;
}

/// The same for all rows, on all workers. Nothing after an abort.
template <typename MaskPixel>
std::optional<Region> maskedBounds(const Map<MaskPixel>& mask, RenderStatus* statusRecord)
{
    constexpr int kTaskRows = 64;
    const int left = mask.xAxis().offset, right = left + mask.width();
    const int top = mask.yAxis().offset, bottom = top + mask.height();
    std::vector<Region> parts(
        static_cast<std::size_t>((mask.height() + kTaskRows - 1) / kTaskRows));
    SharedWork work(statusRecord);
    const bool isDone = work.run(static_cast<int>(parts.size()), [&](int task, int) {
        const int begin = top + task * kTaskRows;
        parts[static_cast<std::size_t>(task)] =
            maskedBoundsOf(mask, begin, std::min(begin + kTaskRows, bottom));
    });
    if (!isDone) return std::nullopt;
    Region bounds{right, bottom, left, top};
    for (const Region& part : parts) {
        if (part.isEmpty()) continue;
        bounds = {std::min(bounds.x0, part.x0), std::min(bounds.y0, part.y0),
                  std::max(bounds.x1, part.x1), std::max(bounds.y1, part.y1)};
    }
    return bounds;
}

/// Turns labels into a mask of the first area.
class FirstArea final : public Sampler<const Map<Pixel32i>, Map<Pixel32f>> {
public:
    explicit FirstArea(float maximum) : maximum_(maximum) {}

    void processPass() override
    {
        const auto [yBegin, yEnd] = threadRows();
        for (int y = yBegin; y < yEnd; ++y) {
            const int count = region().x1 - region().x0;
            const Pixel32i* labels = RowReader(other(), y).span(region().x0, count);
            Pixel32f* mask = RowWriter(target(), y).from(region().x0);
            if (labels == nullptr) {  // no memory for labels: no area
                std::fill_n(mask, count, 0.0f);
                continue;
            }
            std::transform(labels, labels + count, mask, [this](Pixel32i label) {
                return label == RegionLabeller::kFirstArea ? maximum_ : 0.0f;
            });
        }
    }

private:
    float maximum_;
};

template <typename Node, typename From, typename To>
void runNode(Node& node, const From& from, To& to, RenderStatus* statusRecord)
{
    node.setStatusRecord(statusRecord);
    node.process(&from, &to);
}

bool isAborted(RenderStatus* statusRecord)
{
    return statusRecord != nullptr && statusRecord->pollAbort();
}

/// A map without pixels yet, one pixel larger than the mask on every side.
Map<Pixel32i> mapAround(const MapDomain& mask)
{
    const auto padded = [](int size) { return limitToInt(std::int64_t{size} + 2); };
    const auto before = [](int offset) { return limitToInt(std::int64_t{offset} - 1); };
    Map<Pixel32i> map;
    map.setSize(padded(mask.width()), padded(mask.height()));
    map.placeAt(before(mask.xAxis().offset), before(mask.yAxis().offset));
    return map;
}

/// A random unmasked pixel. There is always one, unless the host ran no threads to pad the mask.
std::optional<PixelVec2f> drawStartPoint(const Map<Pixel32i>& padded, int seed)
{
    // The generator's numbers come from the low 24 bits of its state, which repeat after 2^24
    // steps, and a point takes four steps: after 2^22 points all others are repetitions.
    constexpr int kDifferentPoints = 1 << 22;
    Random random(static_cast<std::uint32_t>(seed));
    for (int i = 0; i < kDifferentPoints; ++i) {
        const int x = padded.xAxis().offset + drawBelow(random, padded.width());
        const int y = padded.yAxis().offset + drawBelow(random, padded.height());
        if (padded.read(x, y) != kUnmasked) continue;
        return PixelVec2f{static_cast<float>(x), static_cast<float>(y)};
    }
    return firstPixelOf(padded, kUnmasked);
}

/// The stages of one mask, on the part of it that `storeOnly` gives.
template <typename MaskPixel>
class MaskPreparation {
public:
    MaskPreparation(Map<MaskPixel>& mask, int seed, RenderStatus* statusRecord)
        : mask_(mask), seed_(seed), statusRecord_(statusRecord)
    {}

    /// Pads and labels the mask within a part of the padded map. Outside it everything is unmasked.
    /// False after an abort.
    bool label(const Region& part)
    {
        padded_ = mapAround(mask_);
        padded_.storeOnly(part);
        padded_.allocate();
        if (!pad()) return false;
        const bool isWhole = (padded_.domainFlags() & MapDomain::kStoresPart) == 0;
        if (isWhole && padded_.isUsable() && !firstPixelOf(padded_, kUnmasked)) {
            // A mask without any unmasked pixel, inside or outside its pixels, selects everything.
            // Treat its outside as unmasked, so that all of its pixels become the region.
            mask_.setFillValue(MaskPixel{0});
            if (!pad()) return false;
        }
        labels_.copyGeometry(padded_);
        labels_.allocate();
        RegionLabeller labeller(drawStartPoint(padded_, seed_).value_or(PixelVec2f{0.0f, 0.0f}));
        labeller.setStatusRecord(statusRecord_);
        labeller.process(padded_, labels_);
        padded_.release();
        return !isAborted(statusRecord_);
    }

    /// Whether everything outside the part is connected with the start point, as its border is.
    bool reachesOutside() const
    {
        return !labels_.isUsable() || *labels_.pixelAt(0, 0) == RegionLabeller::kOutside;
    }

    std::optional<Map<Pixel32f>> firstArea()
    {
        Map<Pixel32f> result;
        result.copyGeometry(labels_);
        result.allocate();
        FirstArea firstArea(MaskTraits<MaskPixel>::kMax);
        runNode(firstArea, labels_, result, statusRecord_);
        if (statusRecord_ != nullptr && statusRecord_->aborted != 0) return std::nullopt;
        return result;
    }

private:
    bool pad()
    {
        MaskPadding<MaskPixel> padding;
        runNode(padding, mask_, padded_, statusRecord_);
        return !isAborted(statusRecord_);
    }

    Map<MaskPixel>& mask_;
    int seed_;
    RenderStatus* statusRecord_;
    Map<Pixel32i> padded_, labels_;
};

}  // namespace

template <typename MaskPixel>
std::optional<Map<Pixel32f>> prepareFillMask(Map<MaskPixel>& mask, int seed,
                                             RenderStatus* statusRecord)
{
    Map<MaskPixel> view;
    view.assign(mask);
    view.setEdgeMode(EdgeMode::EdgeNone, EdgeMode::EdgeNone);

    const Region whole = mapAround(view).extent();
    Region part = whole;
    if (toByte(view.fillValue()) == kUnmasked) {
        // A border of unmasked pixels round the masked ones is connected with all beyond it.
        const std::optional<Region> masked = maskedBounds(view, statusRecord);
        if (!masked) return std::nullopt;
        part = masked->isEmpty()
                   ? Region{whole.x0, whole.y0, whole.x0 + 1, whole.y0 + 1}
                   : Region{masked->x0 - 1, masked->y0 - 1, masked->x1 + 1, masked->y1 + 1};
    }
    MaskPreparation<MaskPixel> preparation(view, seed, statusRecord);
    if (!preparation.label(part)) return std::nullopt;
    // The start point can lie in a hole of the mask. All the rest is the region then.
    if (part != whole && !preparation.reachesOutside() && !preparation.label(whole)) {
        return std::nullopt;
    }
    return preparation.firstArea();
}

template std::optional<Map<Pixel32f>> prepareFillMask(Map<Pixel8>&, int, RenderStatus*);
template std::optional<Map<Pixel32f>> prepareFillMask(Map<Pixel16>&, int, RenderStatus*);
template std::optional<Map<Pixel32f>> prepareFillMask(Map<Pixel32f>&, int, RenderStatus*);

}  // namespace Orvane::Engine
