#pragma once

#include <memory>

#include "viewer/model/NextStep.h"
#include "viewer/model/Playback.h"
#include "viewer/model/RenderScheduler.h"
#include "viewer/window/ParameterPanel.h"
#include "viewer/window/PictureArea.h"
#include "viewer/window/StatusPanel.h"
#include "viewer/window/VariationStrip.h"

namespace Tesseret::Viewer {

/// Everything that belongs to one opened picture. Made and destroyed while the window's OpenGL
/// context is current.
struct Workspace {
    Workspace(std::unique_ptr<ViewSession> opened, MessageLog& log);

    /// For the line of advice.
    Progress progress() const;
    /// Shows the worker's latest result; false when it is shown already.
    bool showLatest();
    /// Requests the renders that are missing; `wantsResult` although only the source is shown.
    void schedule(bool wantsResult);
    /// From the source to the result once there is a region to fill, and back when it is undone.
    void followRegion();
    void step(int frames);
    void showFrame(int frame);

    std::unique_ptr<ViewSession> session;
    PictureArea picture;
    ParameterPanel panel;
    VariationStrip variations;
    StatusPanel status;
    RenderScheduler scheduler;
    Playback playback;
    std::filesystem::path output;   ///< of the result; empty: asked for
    std::uint64_t savedSerial = 0;  ///< of the result that was saved last
    bool hasMatteName = false;      ///< the user has named the matte's file

private:
    bool fillsRegion() const;

    std::uint64_t shownSerial_ = 0;
    bool filledRegion_ = false;
};

}  // namespace Tesseret::Viewer
