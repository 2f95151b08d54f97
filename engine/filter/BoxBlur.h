#pragma once

#include <vector>

#include "engine/filter/BoxLines.h"
#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// Blurs a map of floats with a box of fractional radius along x and then along y: once, or three
/// times in succession, which approximates a Gaussian (Kovesi 2010).
///
/// The target may be the input; it takes over the input's edge modes and fill value, and samples
/// outside the input are read through those. The cost of a pixel does not depend on the radius, and
/// the result does not depend on the number of threads. A result depends only on samples inside its
/// box: a flat field stays exactly flat, zeros far from anything else stay exactly zero, and NaN
/// spreads no farther than the box.
///
/// Without memory for the horizontal result the render status says aborted, error code 1000, and
/// the target keeps its pixels.
class BoxBlur final : public Sampler<const Map<Pixel32f>, Map<Pixel32f>> {
public:
    enum Variant { ThreeApplications, OneApplication };
    /// Columns or rows, counted from the region's first; end is exclusive.
    struct Span {
        int begin, end;
    };

    explicit BoxBlur(Variant variant, float radius = 0.0f);

    /// Radii in pixels; negative radii and NaN count as 0. Along x, three applications divide the
    /// radius by `radiusScaleX`, one multiplies it by `radiusScaleY`. Three applications limit both
    /// to 3 times the larger side of the target, one to 100000 pixels.
    void setRadius(float radiusX, float radiusY) { radiusX_ = radiusX, radiusY_ = radiusY; }

    /// Skipped, with a line on standard error, when either map has no pixels.
    void process(const Map<Pixel32f>& input, Map<Pixel32f>& target);

    void begin() override;
    void processPass() override;

private:
    bool prepare();
    void copyInput();
    bool makeRoom();
    void findLivePart();
    void clearAround();
    void blurRows();
    void blurColumns();
    int applications() const { return variant_ == ThreeApplications ? 3 : 1; }

    Variant variant_;
    float radiusX_, radiusY_;

    // Of the current call.
    BoxFilter filterX_, filterY_;
    std::vector<int> columns_;  ///< the input's stored column for each x that is read, or -1
    std::vector<int> rows_;     ///< the temporary map's row for each y that is read, or -1
    int firstRow_ = 0;          ///< the input's stored row that the temporary map starts with
    Span live_{}, liveRows_{};  ///< columns and rows of the region that can be nonzero

    Map<Pixel32f> temporary_;  ///< rows of the input blurred along x, as wide as the region
};

/// The smallest part of a map's `frame` that holds `part` and in which a blur by three applications
/// gives the same bits as over the whole frame, as long as the input is 0 wherever the two differ:
/// it starts where a segment of the sums does.
Region blurredAlike(const Region& part, const Region& frame, float radius);

}  // namespace Orvane::Engine
