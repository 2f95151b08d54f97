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
    void move(const View& view, OfxPointD screen);
    bool press(const View& view, OfxPointD screen);
    void release(const View& view, OfxPointD screen);
    /// Whether the overlay has the pen, from the press it took to the release.
    bool isDragging() const { return isDragging_; }

private:
    enum class PenAction { Motion, Down, Up };
    bool send(PenAction action, const View& view, OfxPointD screen);
    void updateView(Host::Interact& overlay, const View& view) const;

    ViewSession& session_;
    bool isDragging_ = false;
};

}  // namespace Tesseret::Viewer
