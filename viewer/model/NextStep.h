#pragma once

#include <string>

#include "viewer/model/MatteTools.h"

namespace Tesseret::Viewer {

/// What decides on the advice; of the window and its session.
struct Progress {
    bool hasPicture = false;
    bool fillsRegion = false;  ///< from a matte or an alpha; else the whole picture
    bool fillsMatte = false;   ///< from the matte
    bool hasPaint = false;     ///< something is masked
    bool isDrawing = false;    ///< with the tool
    bool isRendering = false;
    bool hasFailed = false;
    bool showsSource = false;
    bool isChoosing = false;  ///< settings, by trials
    bool hasChosen = false;   ///< settings are in force that were chosen
    bool hasFills = false;    ///< to pick from
    bool isSaved = false;     ///< the result that is shown
    std::size_t areas = 0;
    std::string obstacle;  ///< to painting
    ToolKind tool = ToolKind::Brush;
};

/// One line that tells the user what to do next.
std::string nextStep(const Progress& progress);

}  // namespace Tesseret::Viewer
