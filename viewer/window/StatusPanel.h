#pragma once

#include "viewer/model/Messages.h"
#include "viewer/model/ViewSession.h"

namespace Tesseret::Viewer {

/// Below the picture: the frame of a sequence, how the render goes on, and what the person was
/// told.
class StatusPanel {
public:
    /// Both outlive the object.
    StatusPanel(ViewSession& session, const MessageLog& log) : session_(session), log_(log) {}

    /// Inside the user interface's current window. Returns the frame wanted, the current one unless
    /// the person chooses another. `zoom` is screen units for one canonical unit.
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
