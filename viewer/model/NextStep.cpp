#include "viewer/model/NextStep.h"

namespace Tesseret::Viewer {

namespace {

std::string whileDrawing(ToolKind tool)
{
    switch (tool) {
        case ToolKind::Polygon:
            return "Click the corners; a double click or Enter closes the polygon, Escape drops "
                   "it.";
        case ToolKind::SampleBox:
            return "Let go when the box lies on clean ground; Escape drops it.";
        default:
            return "Let go to fill what you have painted; Escape drops the stroke.";
    }
}

std::string beforePainting(const Progress& progress)
{
    if (!progress.obstacle.empty())
        return "The whole picture is filled: " + progress.obstacle + ".";
    if (progress.tool == ToolKind::SampleBox) {
        return "Drag a box over clean ground, then paint over what should go (B: brush).";
    }
    if (progress.tool == ToolKind::Eraser || progress.tool == ToolKind::Fill) {
        return "Nothing is painted yet: paint over what should go (B: brush, L: lasso).";
    }
    const std::string rest =
        progress.showsSource ? " Result shows the whole picture filled with texture." : "";
    return "Paint over what should go; then choose settings (C), and save (Ctrl+S)." + rest;
}

std::string filled(const Progress& progress)
{
    if (progress.showsSource) return "Paint on, or choose Result to see the fill.";
    if (progress.isSaved) return "Saved. Paint on, or open the next picture (Ctrl+O).";
    const std::string areas =
        progress.areas > 1 ? std::to_string(progress.areas) + " areas are filled. " : "";
    if (progress.fillsMatte && !progress.hasChosen) {
        return areas + "Good? Save it (Ctrl+S). Else let it choose settings (C).";
    }
    return areas +
           (progress.hasFills ? "Good? Save it (Ctrl+S). Else take another fill below, "
                              : "Good? Save it (Ctrl+S). Else ") +
           "try the next seed (N), or a sample box on clean ground (X).";
}

}  // namespace

std::string nextStep(const Progress& progress)
{
    if (!progress.hasPicture) return "Open a picture (Ctrl+O), or drop its file here.";
    if (progress.isDrawing) return whileDrawing(progress.tool);
    if (progress.isChoosing) {
        return "Looking for the settings whose fill shows least... Escape stops with the best so "
               "far; you can go on painting.";
    }
    if (!progress.fillsRegion && progress.showsSource) return beforePainting(progress);
    if (progress.fillsMatte && !progress.hasPaint) {
        return "Nothing is painted, so nothing is filled: paint over what should go.";
    }
    if (progress.isRendering) return "Filling... You can go on painting and changing settings.";
    if (progress.hasFailed) return "The fill failed; the reason stands below the picture.";
    if (!progress.fillsRegion && !progress.isSaved) {
        return "The whole picture is filled. Save it (Ctrl+S), or paint over what should go.";
    }
    return filled(progress);
}

}  // namespace Tesseret::Viewer
