#pragma once

#include "viewer/model/View.h"
#include "viewer/model/ViewSession.h"

namespace Tesseret::Viewer {

/// The plug-in's own overlay over the picture: draws it, and forwards the pen, which is moved onto
/// the sample box where it is near.
class OverlayLayer {
public:
    /// The session outlives the object. An OpenGL context is current in every call.
    explicit OverlayLayer(ViewSession& session) : session_(session) {}

    /// Draws in the view's projection, in canonical units.
    void draw(const View& view);

    /// The pen at a screen position. `press` returns true when the overlay takes the drag.
    void move(const View& view, OfxPointD screen) { session_.movePen(penAt(view, screen)); }
    bool press(const View& view, OfxPointD screen)
    {
        return session_.pressPen(penAt(view, screen));
    }
    void release(const View& view, OfxPointD screen) { session_.releasePen(penAt(view, screen)); }

private:
    /// Passes the view to the overlay.
    Host::Interact::Pen penAt(const View& view, OfxPointD screen);
    void updateView(Host::Interact& overlay, const View& view) const;
    std::optional<OfxRectD> box() const;
    OfxPointD caught(const View& view, OfxPointD pen);

    ViewSession& session_;
    OfxPointD offset_{0.0, 0.0};  ///< from the pointer to the pen
};

}  // namespace Tesseret::Viewer
