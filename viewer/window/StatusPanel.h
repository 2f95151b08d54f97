#pragma once

#include "viewer/model/Messages.h"
#include "viewer/model/ViewSession.h"

namespace Tesseret::Viewer {

/// Below the picture: the frame of a sequence, the progress of the render, and the message log.
class StatusPanel {
public:
    /// Both outlive the object.
    StatusPanel(ViewSession& session, const MessageLog& log) : session_(session), log_(log) {}

    /// Draws into the user interface's current window. Returns the frame that the user selected, by
    /// default the current one. `zoom` is screen units for one canonical unit.
    int draw(double zoom);

private:
    int drawFrames() const;
    void drawProgress() const;
    void drawMessages();

    ViewSession& session_;
    const MessageLog& log_;
    unsigned long shown_ = 0;  ///< lines of the log, to follow its end
};

}  // namespace Tesseret::Viewer
