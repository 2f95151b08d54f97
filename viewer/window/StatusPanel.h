#pragma once

#include "viewer/model/Messages.h"
#include "viewer/model/ViewSession.h"

namespace Tesseret::Viewer {

/// Below the picture: the frame of a sequence, the progress of the render, what the shown render
/// had to say, and the message log.
class StatusPanel {
public:
    /// Both outlive the object.
    StatusPanel(ViewSession& session, const MessageLog& log) : session_(session), log_(log) {}

    struct Choice {
        int frame = 0;
        bool togglesPlay = false;
    };

    /// Draws into the user interface's current window. Returns the frame that the user selected, by
    /// default the current one. `zoom` is screen units for one canonical unit.
    Choice draw(double zoom, bool isPlaying);

private:
    Choice drawFrames(bool isPlaying) const;
    void drawProgress() const;
    void drawSearch(const SearchState& search) const;
    void drawMessages();
    void drawRenderNotes() const;

    ViewSession& session_;
    const MessageLog& log_;
    unsigned long shown_ = 0;        ///< lines of the log, to follow its end
    std::uint64_t shownRender_ = 0;  ///< to show its notes
};

}  // namespace Tesseret::Viewer
