#pragma once

#include "viewer/model/View.h"
#include "viewer/model/ViewSession.h"

namespace Tesseret::Viewer {

/// The plug-in's own overlay over the picture: draws it, and hands it the pen.
class OverlayLayer {
public:
    /// The session outlives the object. An OpenGL context is current in every call.
    explicit OverlayLayer(ViewSession& session) : session_(session) {}

    /// Draws in the view's projection, in canonical units.
    void draw(const View& view);

    /// The pen at a screen position. `press` is true when the overlay takes the drag that begins.
    void move(const View& view, OfxPointD screen) { session_.movePen(penAt(view, screen)); }
    bool press(const View& view, OfxPointD screen)
    {
        return session_.pressPen(penAt(view, screen));
    }
    void release(const View& view, OfxPointD screen) { session_.releasePen(penAt(view, screen)); }

private:
    /// With the view as the overlay is to see it.
    Host::Interact::Pen penAt(const View& view, OfxPointD screen);
    void updateView(Host::Interact& overlay, const View& view) const;

    ViewSession& session_;
};

}  // namespace Tesseret::Viewer
