#include "engine/boundary/BoundaryPath.h"

#include <algorithm>
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

/// Gives the composite mask the size and position of the work region, and storage round the band,
/// outside of which it is 0.
template <typename Pixel>
void shape(const BoundaryInputs<Pixel>& inputs, Map<Pixel32f>& compositeMask)
{
    const Region& work = inputs.search.work;
    compositeMask.setSize(work.x1 - work.x0, work.y1 - work.y0);
    compositeMask.placeAt(work.x0, work.y0);
    compositeMask.storeOnly(
        blurredAlike(inputs.search.band->storedExtent(), work, inputs.edgeBlend));
    compositeMask.setFillValue(0.0f);
    compositeMask.allocate();
}

bool isNonzero(float value)
{
    return value != 0.0f;
}

void drawPath(const std::vector<PixelPoint>& path, float value, Map<Pixel32f>& map)
{
    for (const PixelPoint p : path) {
        if (Pixel32f* pixel = map.translate(p.x, p.y)) *pixel = value;
    }
}

/// Paints the area that the path encloses, starting inside the fill region.
template <typename Pixel>
void paintInside(const BoundaryInputs<Pixel>& inputs, const std::vector<PixelPoint>& path,
                 PixelPoint inside, Map<Pixel32f>& compositeMask)
{
    constexpr float kMax = PixelTraits<Pixel>::kMax;
    constexpr float kOutline = -1.0f;
    shape(inputs, compositeMask);
    ConstantFill<Pixel32f> clear(0.0f);
    clear.setStatusRecord(inputs.statusRecord);
    clear.process(&compositeMask);
    drawPath(path, kOutline, compositeMask);
    FloodFill<Pixel32f> fill(kMax);
    fill.setStatusRecord(inputs.statusRecord);
    fill.setSeed(static_cast<float>(inside.x), static_cast<float>(inside.y));
    fill.setKeepWritten(true);
    fill.process(compositeMask, compositeMask);
    drawPath(path, 0.0f, compositeMask);
}

/// Whether the painted area avoids the border and includes the whole fill region, which lies in the
/// part of the composite mask that is stored. The path does not run along that part's border unless
/// it is the work region's.
bool enclosesRegion(const Map<Pixel32f>& fillMask, const Map<Pixel32f>& compositeMask)
{
    if (!compositeMask.isUsable()) return false;
    const Region area = compositeMask.storedExtent();
    const int count = area.x1 - area.x0;
    for (int y = area.y0; y < area.y1; ++y) {
        const float* painted = RowReader(compositeMask, y).span(area.x0, count);
        const bool borderRow = y == area.y0 || y == area.y1 - 1;
        if (painted[0] != 0.0f || painted[count - 1] != 0.0f) return false;
        if (borderRow && std::any_of(painted, painted + count, isNonzero)) return false;
        const auto region = RowReader(fillMask, y).interior(area.x0, area.x1);
        painted += region.begin - area.x0;
        int missing = 0;
        for (int i = 0; i < region.end - region.begin; ++i) {
            missing |= region.pixels[i] != 0.0f && painted[i] == 0.0f ? 1 : 0;
        }
        if (missing != 0) return false;
    }
    return true;
}

/// Makes the composite mask a copy of the fill region.
template <typename Pixel>
void takeFillRegion(const BoundaryInputs<Pixel>& inputs, Map<Pixel32f>& compositeMask)
{
    shape(inputs, compositeMask);
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
        const bool encloses = enclosesRegion(*inputs.fillMask, compositeMask);
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
