#include "render/BlockValues.h"

#include <algorithm>
#include <cmath>

#include "effect/ParameterNames.h"

namespace Tesseret::Render {

double BlockValues::blocksIn(double width, double height, double blockWidth,
                             double blockHeight) const
{
    const auto along = [&](double length, double size) {
        const double stride =
            std::max(1.0, size - std::min(std::floor(overlap), std::floor(size / 2.0)));
        return std::ceil(length / stride);
    };
    return along(width, blockWidth) * along(height, blockHeight);
}

std::optional<BlockValues> blockValuesOf(const InstanceSetup& setup, double scale)
{
    const ParameterValues values = setup.values();
    const auto number = [&](const char* name) -> std::optional<double> {
        const auto found = values.find(name);
        if (found == values.end()) return std::nullopt;
        if (const auto* const whole = std::get_if<int>(&found->second)) return *whole;
        const auto* const real = std::get_if<double>(&found->second);
        return real == nullptr ? std::nullopt : std::optional(*real);
    };
    const auto block = number(Names::kBlockSize), overlap = number(Names::kOverlap),
               samples = number(Names::kNumSamples), path = number(Names::kPathWidth),
               edge = number(Names::kEdgeBlend), avoids = number(Names::kAvoidFillRegion);
    if (!block || !overlap || !samples || !path || !edge || !avoids) return std::nullopt;
    constexpr double kMargin = 5.0;
    BlockValues result;
    result.block = static_cast<int>(*block);
    result.overlap = *overlap * scale;
    result.margin = kMargin * (*path + *edge) * scale;
    result.samples = *samples;
    result.scale = scale;
    result.avoids = *avoids != 0.0;
    result.matchesLuminance = number(Names::kLuminanceMatch).value_or(0.0) != 0.0;
    return result;
}

}  // namespace Tesseret::Render
