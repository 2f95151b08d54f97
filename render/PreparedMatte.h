#pragma once

#include <memory>

#include "render/JobInputs.h"
#include "render/MatteAreas.h"

namespace Tesseret::Render {

/// One frame's matte, widened by the settings' radius.
struct PreparedMatte {
    std::filesystem::path file;
    std::shared_ptr<const Picture> whole;  ///< at full size
    MatteAreas areas;                      ///< in pixels of the render scale
};

/// Prepares the mattes of a job. One call at a time.
class MattePreparation {
public:
    MattePreparation(const RenderSettings& settings, Polarity polarity);

    /// Returns the last result when the matte is the same.
    std::shared_ptr<const PreparedMatte> prepare(const ClipPicture& matte);

private:
    Polarity polarity_;
    double grow_;
    double renderScale_;
    std::shared_ptr<const Picture> last_;
    std::shared_ptr<const PreparedMatte> prepared_;  ///< from last_
};

}  // namespace Tesseret::Render
