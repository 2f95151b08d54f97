#pragma once

#include <span>

#include "viewer/model/Messages.h"
#include "viewer/model/View.h"
#include "viewer/window/MatteLayer.h"
#include "viewer/window/OverlayLayer.h"
#include "viewer/window/PictureLayers.h"
#include "viewer/window/ToolBox.h"
#include "viewer/window/TrialLayer.h"

namespace Tesseret::Viewer {

/// The part of the window with the picture: draws it with the matte and the overlay, and follows
/// the pointer. The wheel zooms, the middle button pans, left and right belong to the tool; before
/// it come the line of the split view, and for the sample box the overlay.
class PictureArea {
public:
    /// Both outlive the object.
    PictureArea(ViewSession& session, MessageLog& log);

    View& view() { return view_; }
    PictureLayers& layers() { return layers_; }
    const PictureLayers& layers() const { return layers_; }
    ToolBox& tools() { return tools_; }
    const ToolBox& tools() const { return tools_; }
    /// Whether a drag is changing parameters.
    bool isEditing() const { return session_.isDragging(); }
    /// Whether the tool is drawing.
    bool isDrawing() const { return tools_.tool().isActive(); }
    /// Zooms to what is masked; false when nothing is.
    bool showHole();

    /// Shows the session's frame and the worker's latest result.
    void update();
    /// Handles the frame's pointer input, unless the user interface wants it. `motions` are the
    /// places that the pointer has passed since the last frame, in screen units.
    void followPointer(std::span<const OfxPointD> motions);
    /// Closes or drops what the tool is drawing.
    void finishDrawing();
    void cancelDrawing();
    /// `windowHeight` in screen units, `density` in pixels for one of them.
    void draw(double windowHeight, double density);

private:
    void openAtHole();
    void zoom(OfxPointD pointer);
    void press(OfxPointD pointer, int button);
    void release(OfxPointD pointer);
    void followOverlay(OfxPointD pointer, bool isOver);
    ToolPen penAt(OfxPointD screen, bool erases) const;
    OfxPointD onScreen(OfxPointD pixel) const;
    double aspect() const;

    bool showsOverlay() const;
    bool showsTint() const;
    void drawMatte();
    void drawShape() const;
    void drawBrush() const;
    void drawAreaNumbers() const;
    OfxPointD topOf(const OfxRectI& box, double scale) const;

    ViewSession& session_;
    MessageLog& log_;
    View view_;
    PictureLayers layers_;
    TrialLayer trials_;
    MatteLayer matte_;
    OverlayLayer overlay_;
    ToolBox tools_;
    bool isPanning_ = false, isWiping_ = false, isOver_ = false;
    bool isOpened_ = false;      ///< the first view has been chosen
    int held_ = -1;              ///< the button that the tool was pressed with; -1 for none
    OfxPointD pen_{-1.0, -1.0};  ///< canonical, last sent to the overlay
};

}  // namespace Tesseret::Viewer
