#pragma once

/// What a job is going to do, without rendering or writing anything.

#include <filesystem>
#include <string>
#include <vector>

#include "render/RenderSettings.h"

namespace Tesseret::Render {

/// A separate area of the matte as painted.
struct PlannedArea {
    std::size_t number;  ///< from 1, as --areas counts
    ViewBox box;
    std::size_t pixels;
};

/// The first frame of a step stands for all.
struct PlannedStep {
    std::size_t fills;  ///< areas to fill, as grown; 1 without a matte
    int blockSize;      ///< 0 for a plug-in without blocks
    double blocks;
};

struct JobPlan {
    std::filesystem::path source;
    int width = 0, height = 0;
    Depth depth = Depth::Byte;  ///< of the render
    std::string context;
    std::vector<int> frames;  ///< empty for a still
    std::vector<PlannedArea> areas;
    std::vector<PlannedStep> steps;
    double imageBytes = 0.0;  ///< estimated: the pictures, and the plug-in's maps at their peak
    std::vector<std::filesystem::path> files;  ///< to be written
    std::vector<std::string> notes;
};

/// Reads the first frame and loads the plug-in. Throws as `RenderJob` does.
JobPlan planJob(const RenderSettings& settings);

}  // namespace Tesseret::Render
