#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "render/JobInputs.h"
#include "render/MatteAreas.h"

namespace Tesseret::Render {

/// One frame's matte: the part of it that the settings choose, widened by their radius.
struct PreparedMatte {
    std::filesystem::path file;
    std::size_t paintedAreas;              ///< in the file; 0 when all of them are filled
    std::shared_ptr<const Picture> whole;  ///< at full size
    MatteAreas areas;                      ///< in pixels of the render scale
};

/// The areas of the matte last asked for, which several preparations share. One call at a time.
class PaintedAreas {
public:
    const MatteAreas& of(const std::shared_ptr<const Picture>& matte, Polarity polarity);

private:
    std::shared_ptr<const Picture> matte_;
    std::optional<MatteAreas> areas_;
};

/// Prepares the mattes of a job. One call at a time.
class MattePreparation {
public:
    MattePreparation(const RenderSettings& settings, Polarity polarity,
                     std::shared_ptr<PaintedAreas> painted = std::make_shared<PaintedAreas>());

    /// Returns the last result when the matte is the same.
    std::shared_ptr<const PreparedMatte> prepare(const ClipPicture& matte);

private:
    Polarity polarity_;
    double grow_;
    double renderScale_;
    std::vector<std::size_t> areas_;
    std::optional<LineSide> side_;
    std::shared_ptr<PaintedAreas> painted_;
    std::shared_ptr<const Picture> last_;
    std::shared_ptr<const PreparedMatte> prepared_;  ///< from last_
};

}  // namespace Tesseret::Render
