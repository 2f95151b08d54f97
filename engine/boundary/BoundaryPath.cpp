#include "engine/boundary/BoundaryPath.h"

#include <optional>

#include "engine/boundary/WeightedPointPicker.h"
#include "engine/filter/BoxBlur.h"
#include "engine/filter/FillAndCopy.h"
#include "engine/map/ExactMath.h"
#include "engine/map/MapRow.h"
#include "engine/map/PixelTraits.h"
#include "engine/mask/FloodFill.h"

namespace Orvane::Engine {
namespace {

/// A blur of a smaller radius would have no visible effect.
constexpr float kMinEdgeBlend = 0.01f;

/// Draws one pixel of a mask of 0 to M, weighted by its value.
template <typename Pixel>
std::optional<PixelPoint> drawPoint(const Map<Pixel32f>& mask, const BoundaryInputs<Pixel>& inputs)
{
    constexpr float kMax = PixelTraits<Pixel>::kMax;
    WeightedPointPicker picker(static_cast<int>(kMax));
    picker.setStatusRecord(inputs.statusRecord);
    picker.setNumPoints(1);
    picker.setSeed(inputs.seed);
    picker.setRange(0.0f, kMax);
    picker.process(mask);
    const std::optional<PixelVec2f> point = picker.getPoint(0);
    if (!point) return std::nullopt;
    return PixelPoint{truncateToInt(point->x), truncateToInt(point->y)};
}

/// Gives a map the size and position of the work region, and storage.
void shapeTo(const Region& work, Map<Pixel32f>& map)
{
    map.setSize(work.x1 - work.x0, work.y1 - work.y0);
    map.placeAt(work.x0, work.y0);
    map.setFillValue(0.0f);
    map.allocate();
}

/// Paints the area that the path encloses, starting inside the fill region.
template <typename Pixel>
void paintInside(const BoundaryInputs<Pixel>& inputs, const std::vector<PixelPoint>& path,
                 PixelPoint inside, Map<Pixel32f>& compositeMask)
{
    constexpr float kMax = PixelTraits<Pixel>::kMax;
    const Region& work = inputs.search.work;
    Map<Pixel32f> outline;
    shapeTo(work, outline);
    ConstantFill<Pixel32f> clear(0.0f);
    clear.setStatusRecord(inputs.statusRecord);
    clear.process(&outline);
    for (const PixelPoint p : path) {
        if (Pixel32f* pixel = outline.translate(p.x, p.y)) *pixel = kMax;
    }
    shapeTo(work, compositeMask);
    FloodFill<Pixel32f> fill(kMax);
    fill.setStatusRecord(inputs.statusRecord);
    fill.setSeed(static_cast<float>(inside.x), static_cast<float>(inside.y));
    fill.process(outline, compositeMask);
}

/// Whether the painted area avoids the work region's border and includes the whole fill region.
bool enclosesRegion(const Region& work, const Map<Pixel32f>& fillMask,
                    const Map<Pixel32f>& compositeMask)
{
    for (int y = work.y0; y < work.y1; ++y) {
        const RowReader painted(compositeMask, y);
        const RowReader region(fillMask, y);
        const bool borderRow = y == work.y0 || y == work.y1 - 1;
        for (int x = work.x0; x < work.x1; ++x) {
            const bool border = borderRow || x == work.x0 || x == work.x1 - 1;
            if (painted[x] != 0.0f ? border : region[x] != 0.0f) return false;
        }
    }
    return true;
}

/// Makes the composite mask a copy of the fill region.
template <typename Pixel>
void takeFillRegion(const BoundaryInputs<Pixel>& inputs, Map<Pixel32f>& compositeMask)
{
    shapeTo(inputs.search.work, compositeMask);
    MapCopy<Pixel32f> copy;
    copy.setStatusRecord(inputs.statusRecord);
    copy.process(*inputs.fillMask, compositeMask);
}

void softenEdge(float radius, RenderStatus* statusRecord, Map<Pixel32f>& compositeMask)
{
    if (!(radius > kMinEdgeBlend)) return;
    BoxBlur blur(BoxBlur::ThreeApplications, radius);
    blur.setStatusRecord(statusRecord);
    blur.process(compositeMask, compositeMask);
}

}  // namespace

template <typename Pixel>
BoundaryOutcome fitBoundaryPath(const BoundaryInputs<Pixel>& inputs, Map<Pixel32f>& compositeMask)
{
    const std::optional<PixelPoint> start = drawPoint(*inputs.search.band, inputs);
    if (!start) return BoundaryOutcome::NoPath;
    PathSearch<Pixel> search(inputs.search);
    const PathOutcome found = search.run(*start);
    if (found == PathOutcome::NotReached) return BoundaryOutcome::NoPath;

    BoundaryOutcome outcome = BoundaryOutcome::TraceFailed;
    if (found == PathOutcome::Closed) {
        if (inputs.path != nullptr) *inputs.path = search.path();
        const std::optional<PixelPoint> inside = drawPoint(*inputs.fillMask, inputs);
        if (!inside) return BoundaryOutcome::NoPath;
        paintInside(inputs, search.path(), *inside, compositeMask);
        const bool encloses = enclosesRegion(inputs.search.work, *inputs.fillMask, compositeMask);
        outcome = encloses ? BoundaryOutcome::Fitted : BoundaryOutcome::NotEnclosing;
    }
    if (outcome != BoundaryOutcome::Fitted) takeFillRegion(inputs, compositeMask);
    softenEdge(inputs.edgeBlend, inputs.statusRecord, compositeMask);
    return outcome;
}

template BoundaryOutcome fitBoundaryPath(const BoundaryInputs<PixelRGBA8>&, Map<Pixel32f>&);
template BoundaryOutcome fitBoundaryPath(const BoundaryInputs<PixelRGBA16>&, Map<Pixel32f>&);
template BoundaryOutcome fitBoundaryPath(const BoundaryInputs<PixelRGBAf>&, Map<Pixel32f>&);

}  // namespace Orvane::Engine
