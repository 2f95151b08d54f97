#pragma once

#include "viewer/model/View.h"
#include "viewer/window/OverlayLayer.h"
#include "viewer/window/PictureLayers.h"

namespace Tesseret::Viewer {

/// The part of the window with the picture: draws it and the overlay, and follows the pointer. The
/// wheel zooms, the middle button pans, the left one belongs to the overlay and then to the wipe.
class PictureArea {
public:
    /// The session outlives the object.
    explicit PictureArea(ViewSession& session);

    View& view() { return view_; }
    PictureLayers& layers() { return layers_; }
    /// Whether a drag is changing parameters.
    bool isEditing() const { return session_.isDragging(); }

    /// Shows the session's frame and the worker's latest result.
    void update();
    /// Handles the frame's pointer input, unless the user interface wants it.
    void followPointer();
    /// `windowHeight` in screen units, `density` in pixels for one of them.
    void draw(double windowHeight, double density);

private:
    void zoom(OfxPointD pointer);
    void pressLeft(OfxPointD pointer);

    ViewSession& session_;
    View view_;
    PictureLayers layers_;
    OverlayLayer overlay_;
    bool isPanning_ = false, isWiping_ = false, isOver_ = false;
    OfxPointD pen_{-1.0, -1.0};  ///< canonical, last sent to the overlay
};

}  // namespace Tesseret::Viewer
