#pragma once

/// What a fill of one area is made with.

#include <optional>
#include <string>
#include <vector>

#include "render/FillSteps.h"
#include "render/RenderSettings.h"

namespace Tesseret::Fill {

/// Where texture is taken from: parts of the source, in its pixels. Without any it comes from what
/// the user gave.
struct Place {
    std::string name;
    std::vector<OfxRectI> crops;  ///< at most three
    int room = 0;                 ///< the largest block that fits, in pixels
    /// As high as the fill, in the same rows: `room` is the height of both. Blocks that are higher
    /// by their overlap lie in one row then and keep the texture's rows.
    bool isLevel = false;
};

/// One texture over the area, or over the part of it on one side of a line.
struct Part {
    Place place;
    std::optional<Render::LineSide> side;
};

struct Choice {
    std::vector<Part> parts;  ///< laid one over the other
    int blockSize = 100, overlap = 50, blendSize = 0, numSamples = 50, seed = 1;
    double pathWidth = 10.0, edgeBlend = 5.0;
    bool luminanceMatch = false;
    double grow = 0.0;  ///< of the matte
};

/// The values that the user gave, which no choice changes.
class FixedValues {
public:
    /// Throws `FileError` for a parameter file.
    explicit FixedValues(const Render::RenderSettings& settings);

    bool has(const std::string& parameter) const;
    /// Whether the user said where texture comes from.
    bool fixesPlace() const { return fixesPlace_; }
    bool fixesGrowth() const { return fixesGrowth_; }
    /// Whether the user chose a side of a line.
    bool fixesSide() const { return fixesSide_; }

private:
    std::vector<std::string> names_;
    bool fixesPlace_ = false, fixesSide_ = false, fixesGrowth_ = false;
};

/// The settings of each step of a choice for these areas of the matte. `top` is the upper edge of
/// the source's display window.
std::vector<Render::RenderSettings> settingsOf(const Choice& choice,
                                               const std::vector<std::size_t>& areas, int top,
                                               const Render::RenderSettings& base,
                                               const FixedValues& fixed);

/// The parameters that a choice may set; what else a render has is left as it is.
std::vector<std::string> chosenParameters();

/// Its place and the main values that were chosen, for a line of progress or the caption of a
/// picture.
std::string captionOf(const Choice& choice, const FixedValues& fixed);

}  // namespace Tesseret::Fill
