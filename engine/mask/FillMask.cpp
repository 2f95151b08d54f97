#include "engine/mask/FillMask.h"

#include "engine/map/ExactMath.h"
#include "engine/map/MapRow.h"
#include "engine/map/PixelTraits.h"
#include "engine/map/Random.h"
#include "engine/mask/RegionLabeller.h"

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
        for (int y = yBegin; y < yEnd; ++y) {
            const RowReader mask(this->other(), y);
            RowWriter padded(this->target(), y);
            for (int x = region.x0; x < region.x1; ++x) padded[x] = toByte(mask[x]);
        }
    }
};

/// Turns labels into a mask of the first area.
class FirstArea final : public Sampler<const Map<Pixel32i>, Map<Pixel32f>> {
public:
    explicit FirstArea(float maximum) : maximum_(maximum) {}

    void processPass() override
    {
        const auto [yBegin, yEnd] = threadRows();
        for (int y = yBegin; y < yEnd; ++y) {
            const RowReader labels(other(), y);
            RowWriter mask(target(), y);
            for (int x = region().x0; x < region().x1; ++x) {
                mask[x] = labels[x] == RegionLabeller::kFirstArea ? maximum_ : 0.0f;
            }
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

}  // namespace

template <typename MaskPixel>
std::optional<Map<Pixel32f>> prepareFillMask(Map<MaskPixel>& mask, int seed,
                                             RenderStatus* statusRecord)
{
    Map<MaskPixel> view;
    view.assign(mask);
    view.setEdgeMode(EdgeMode::EdgeNone, EdgeMode::EdgeNone);

    Map<Pixel32i> padded = mapAround(view);
    padded.allocate();
    MaskPadding<MaskPixel> padding;
    runNode(padding, view, padded, statusRecord);
    Map<Pixel32i> labels;
    labels.copyGeometry(padded);
    labels.allocate();
    if (isAborted(statusRecord)) return std::nullopt;

    if (padded.isUsable() && !firstPixelOf(padded, kUnmasked)) {
        // A mask without any unmasked pixel, inside or outside its pixels, selects everything.
        // Treat its outside as unmasked, so that all of its pixels become the region.
        view.setFillValue(MaskPixel{0});
        runNode(padding, view, padded, statusRecord);
        if (isAborted(statusRecord)) return std::nullopt;
    }
    RegionLabeller labeller(drawStartPoint(padded, seed).value_or(PixelVec2f{0.0f, 0.0f}));
    labeller.setStatusRecord(statusRecord);
    labeller.process(padded, labels);
    padded.release();
    if (isAborted(statusRecord)) return std::nullopt;

    Map<Pixel32f> result;
    result.copyGeometry(labels);
    result.allocate();
    FirstArea firstArea(MaskTraits<MaskPixel>::kMax);
    runNode(firstArea, labels, result, statusRecord);
    if (statusRecord != nullptr && statusRecord->aborted != 0) return std::nullopt;
    return result;
}

template std::optional<Map<Pixel32f>> prepareFillMask(Map<Pixel8>&, int, RenderStatus*);
template std::optional<Map<Pixel32f>> prepareFillMask(Map<Pixel16>&, int, RenderStatus*);
template std::optional<Map<Pixel32f>> prepareFillMask(Map<Pixel32f>&, int, RenderStatus*);

}  // namespace Orvane::Engine
