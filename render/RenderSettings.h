#pragma once

/// The settings of a render, before any file is read.

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "picture/Picture.h"

namespace Tesseret::Render {

/// The mask to fill from, where the given files do not imply it.
enum class MaskOption { None, MatteInverted, Alpha, AlphaInverted };

/// A box in the coordinates of an image viewer: pixels from the upper left corner of the display
/// window, y downwards.
struct ViewBox {
    double x1, y1, x2, y2;
};

/// A side of a line through (x, y), in the coordinates of an image viewer: the pixels whose middles
/// lie in the direction of the angle (degrees, 0 to the right, 90 down) or on the line.
struct LineSide {
    double x, y, angle;
};

struct RenderSettings {
    std::filesystem::path source;  ///< in a sequence with a mark for the frame, like all files
    std::filesystem::path output;  ///< empty: nothing is written
    std::filesystem::path matte;   ///< empty: none
    bool paintsMatte = false;  ///< its pictures come from the caller; `matte` is only their name
    MaskOption mask = MaskOption::None;
    bool everyArea = true;              ///< of the matte; else the first one
    std::vector<std::size_t> areas;     ///< only these areas of the matte, from 0; empty: any
    std::optional<LineSide> matteSide;  ///< only this part of the matte
    bool cropsAreas = true;             ///< an area's matte is cropped to its box
    bool followsMatte = false;          ///< recorded blocks move with their area
    double matteGrow = 0.0;             ///< pixels at full size
    bool keepsClear = true;  ///< of the region to fill, where neither box nor texture is given
    std::array<std::filesystem::path, 3> textures;  ///< each empty: none
    /// The part of a texture to use; without a file the texture is this part of the source.
    std::array<std::optional<ViewBox>, 3> textureCrops;
    std::vector<int> frames;        ///< empty: a still
    std::optional<int> firstFrame;  ///< of the shot that the frames are of; else their first
    std::filesystem::path saveFill, loadFill;  ///< files for what the shot's first frame recorded
    bool skipsWhole = false;                   ///< leaves frames alone whose file is whole
    bool keepsGoing = false;                   ///< renders the other frames after one that failed
    std::string context;                       ///< "Filter", "General", or empty: as needed
    std::optional<Depth> depth;                ///< else the source file's own
    std::optional<ViewBox> window;             ///< of the source; else all of it
    std::optional<ViewBox> sampleBox;          ///< of the first texture, else of the source
    double renderScale = 1.0;
    unsigned int threads = 0;  ///< 0: one for each processor that may be used
    std::filesystem::path plugin;
    std::string hostLike;     ///< a known host to imitate; empty: none
    std::string compression;  ///< empty: the default of the output's format
    std::filesystem::path
        parameterFile;     ///< or the text of one, which starts with "{"; empty: none
    std::size_t step = 0;  ///< of the parameter file's list
    std::vector<std::string> parameters;  ///< "name=value", before the file's
};

}  // namespace Tesseret::Render
