#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "engine/pass/MapProcessor.h"

namespace Orvane::Engine {

/// Draws pixels of a map at random, each with a probability proportional to its weight: first a row
/// by the weights summed over the region, then a column within that row. The draw depends on the
/// map, the region and the seed; where it falls within the rounding of a sum, on the number of
/// threads as well: the region's weight is one double sum for each thread, added in thread order.
///
/// The weight of a pixel of value v is (v - low) * weightCap / (high - low), clamped to
/// [0, weightCap]; 0 when `high` equals `low` or v is NaN.
class WeightedPointPicker final : public MapNode<const Map<Pixel32f>> {
public:
    /// `weightCap` is M, the channel maximum of the render depth.
    explicit WeightedPointPicker(int weightCap) : weightCap_(static_cast<float>(weightCap)) {}

    /// The number of points to draw; fewer than 1 draws none.
    void setNumPoints(int count);
    void setSeed(int seed) { seed_ = static_cast<std::uint32_t>(seed); }
    /// The values of weight 0 and of full weight.
    void setRange(float low, float high) { low_ = low, high_ = high; }

    /// Draws the points from the node's region of a map, which is only read. Pixels that the map
    /// does not store count as weight 0.
    void process(const Map<Pixel32f>& map);

    /// Point i in absolute coordinates; (0, 0) when i is not below the number of points. Nothing
    /// when that draw hit no pixel: the weights add up to 0, the column's draw equals the weight of
    /// its row, there are more points than pixels after the first, or the render was aborted.
    std::optional<PixelVec2f> getPoint(int i) const;

    void begin() override;
    void processPass() override;
    void end() override;

private:
    std::span<const float> valuesOf(int y, std::vector<float>& copy) const;
    double sumWith(double sum, std::span<const float> values) const;
    float weight(float value) const;
    std::vector<int> matchRows(const std::vector<double>& targets) const;
    std::optional<PixelVec2f> drawInRow(int y, double noise) const;

    float weightCap_;
    std::uint32_t seed_ = 0;
    float low_ = 0.0f, high_ = 0.0f, scale_ = 0.0f;
    RowRange allRows_{};  ///< what the threads share; some of the rows may not be stored
    std::vector<double> partialSums_;  ///< one for each worker thread
    std::vector<std::optional<PixelVec2f>> points_;
};

}  // namespace Orvane::Engine
